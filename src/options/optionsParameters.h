#pragma once
// The parameter options panel: which parameters the table shows (one check box per row, in
// eight groups), each group's colour, and whether synthesis runs cascade/parallel or all
// parallel. Reads channel 0 on setup, writes it only on OK. The Default button resets the
// panel, not the document. Main thread only.
#include "document/ParameterDefinition.h"
#include "options/OptionPanel.h"

#include <array>

class ColorWell;
class QButtonGroup;
class QCheckBox;

class optionsParameters : public OptionPanel
{
    Q_OBJECT
public:
    explicit optionsParameters(QWidget* parent = nullptr);

    void setup(MyDocument* doc) override;
    void save(MyDocument* doc) override;
    void defaultSetting();
    // The same panel, centred and in front rather than attached to a window.
    int startSheet(MyDocument* doc);
    // Opens the per-parameter limits panel over this one, for the same document.
    void parameterstButton();

    // The group (1..8) of a parameter row.
    static int groupOfRow(int row);

    std::array<QCheckBox*, kParameterCount> m_pShown{}; // by parameter row
    std::array<ColorWell*, 9> _colorSet{};              // wells 1..8 (0 unused)
    QButtonGroup* _methodGroup = nullptr;               // id 1 cascade, id 0 parallel

private:
    MyDocument* _pDoc = nullptr;
};
