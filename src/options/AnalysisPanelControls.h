#pragma once
// Controls shared by the option panels (made for the analysis panels, whose name they keep):
// integer and decimal fields, a check box, a two-way choice whose first button carries tag 1, and the menu of
// nine analysis lengths (2^5 .. 2^13 points) titled " %d Hz (%d pts)" with the bandwidth at a sample rate.
// Main thread only.
#include <QString>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLayout;
class QLineEdit;
class QWidget;

namespace AnalysisPanelControls
{
QLineEdit* integerField(int minimum = -1000000, int maximum = 1000000);
QLineEdit* decimalField();
void setInteger(QLineEdit* field, double value); // shown truncated to a whole number
int integerOf(const QLineEdit* field);
double decimalOf(const QLineEdit* field);
// Two radio buttons in a row; the first carries tag 1, the second tag 0.
QButtonGroup* choice(QWidget* owner, const QString& first, const QString& second, QLayout*& row);
void setChoice(QButtonGroup* group, bool first);
bool firstChosen(const QButtonGroup* group);
// The nine analysis lengths at a sample rate; item i is 2^(i + 5) points.
QComboBox* lengthMenu();
void titleLengthMenu(QComboBox* menu, double sampleRate);
int pointsOf(int index);
// A check box and a field on one row.
QLayout* checkedRow(QCheckBox* box, QLineEdit* field);
} // namespace AnalysisPanelControls
