#pragma once
// The parameter settings panel: the limits table (parametersTableView) of every parameter's
// minimum, maximum and default; OK writes them into channel 0's parameter records, the
// Default button puts the factory values back into the table. Main thread only.
#include "options/OptionPanel.h"

class parametersTableView;

class optionParameterSettings : public OptionPanel
{
    Q_OBJECT
public:
    explicit optionParameterSettings(QWidget* parent = nullptr);

    void setup(MyDocument* doc) override;
    void save(MyDocument* doc) override;

    parametersTableView* mTableView = nullptr;

private:
    MyDocument* _pDoc = nullptr;
};
