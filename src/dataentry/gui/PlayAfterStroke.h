#pragma once
// View > Play After Each Stroke of the data-entry windows: a checkable menu item, off by
// default, remembered in the application's settings (one switch for both windows), and the
// playback it asks for when a stroke is released: the whole utterance when it lasts 3 s or less,
// else the stroke's frames with 300 ms before and after (StrokePlayback). Main thread only.
#include "dataentry/StrokePlayback.h"

class MyDocument;
class QAction;
class QObject;
class mainTable;

namespace PlayAfterStroke
{
// The menu item, owned by `parent`, checked as the settings say; toggling it is remembered.
QAction* makeAction(QObject* parent);
bool isOn();
void setOn(bool on);
// Plays what a released stroke over `stroke` asks for through the table, at once.
void play(mainTable* table, MyDocument* doc, const StrokeSpan& stroke);
} // namespace PlayAfterStroke
