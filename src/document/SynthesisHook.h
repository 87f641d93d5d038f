#pragma once
// What MyDocument::Synthesize runs: the synthesizer a program installs once at start, before any
// document synthesizes. The synthesis library installs its Klatt driver in every program that
// links it (see synthesis/Synthesize.h), so the document depends on nothing outside its folder.
// Without one, Synthesize throws DocumentException. Main thread.
class MyDocument;

using SynthesisFunction = void (*)(MyDocument&);
void setSynthesisFunction(SynthesisFunction function);
