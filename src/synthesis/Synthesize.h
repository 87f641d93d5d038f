#pragma once
// The synthesis of a document: the driver that turns its table data into audio in channel 0,
// one Klatt frame per table column, keeping the previous synthesis in channel 1. The document
// runs it through MyDocument::Synthesize once it is installed (document/SynthesisHook.h); the
// synthesis library depends on the document, never the other way round. Main thread (it writes the document's
// channels).
class MyDocument;

// Synthesizes the document; throws DocumentException on allocation failure.
void synthesizeDocument(MyDocument& document);
// Makes synthesizeDocument what MyDocument::Synthesize runs. Every program and test that links
// tessaphon_synthesis calls it before main() (SynthesisInstaller.cpp, compiled into each of
// them); a program may call it again, which changes nothing.
void installSynthesis();
