#pragma once
// The text of a parameter document, shared by the file writer and reader (StkFile.cpp) and by
// the undo snapshots (UndoRedo.cpp). Internal to the document library.
//
// A snapshot uses the file layout with its own version marker and differs in three ways: its
// first line carries the exact length in ms after the three settings (files hold it truncated),
// its anchor section holds the anchors of hidden rows too, and reading it keeps the document's
// file type and audio state (it restores the grid, not the file's identity).
#include "document/FrameImage.h"

#include <string>
#include <string_view>

class MyDocument;

enum class ParameterTextUse { File, Snapshot };

// Writes the document text from the table data (when it has not been built, from the values it
// would be built with: the grid and its anchors, or the parameter records) into `text`,
// replacing what it held but reusing its storage. With allRows false only the selected rows'
// names and values are written.
void writeParameterText(MyDocument& document, bool allRows, ParameterTextUse use, std::string& text);

// Reads the text into channel 0 (settings, selection flags, anchors, grid) and the display
// colours. Answers 0, or -1 with `reason` set and the document unchanged.
int readParameterText(MyDocument& document, std::string_view text, ParameterTextUse use, std::string& reason);

// A snapshot kept as its head (the lines before the anchors and values, which hold no anchor
// entries) and an image of its frames: writes the head and answers the image. Blocks of frames
// the table data has not changed are shared with its source or with `previous`.
FrameImage writeSnapshotImage(MyDocument& document, const FrameImage& previous, std::string& head);

// Reads such a snapshot into channel 0 exactly as the whole snapshot text would be read.
// *gridIsImage tells whether the grid now holds exactly the image's values and anchors (so the
// table data may be built from the image itself). Answers 0, or -1 with `reason` set and the
// document unchanged.
int readSnapshotImage(MyDocument& document, std::string_view head, const FrameImage& frames,
                      std::string& reason, bool* gridIsImage);
