#include "options/optionsParameters.h"

#include "document/MyDocument.h"
#include "options/AnalysisPanelControls.h"
#include "options/ColorWell.h"
#include "options/optionParameterSettings.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QVBoxLayout>

namespace
{
// The groups as the panel shows them: title and first/last row.
struct Group {
    const char* title;
    int first, last;
};
constexpr Group kGroups[9] = {{"", 0, -1},
                              {"Source", 0, 4},
                              {"Formant frequencies", 5, 12},
                              {"Formant bandwidths", 13, 20},
                              {"Bypass", 21, 21},
                              {"Parallel amplitudes", 22, 29},
                              {"Parallel bandwidths", 30, 37},
                              {"Nasal pole and zero", 38, 41},
                              {"Voicing source", 42, 47}};
} // namespace

int optionsParameters::groupOfRow(int row)
{
    for (int g = 1; g <= 8; ++g)
        if (row >= kGroups[g].first && row <= kGroups[g].last)
            return g;
    return 0;
}

optionsParameters::optionsParameters(QWidget* parent) : OptionPanel(parent)
{
    setWindowTitle(tr("Parameters"));
    auto* grid = new QGridLayout;
    for (int g = 1; g <= 8; ++g) {
        auto* box = new QGroupBox(tr(kGroups[g].title));
        auto* layout = new QGridLayout(box);
        const int rows = kGroups[g].last - kGroups[g].first + 1;
        const int perColumn = rows > 4 ? (rows + 1) / 2 : rows;
        for (int row = kGroups[g].first; row <= kGroups[g].last; ++row) {
            const int i = row - kGroups[g].first;
            auto* check = new QCheckBox(QString::fromUtf8(kFactoryParameters[row].name));
            check->setToolTip(QString::fromUtf8(kFactoryParameters[row].definition).trimmed());
            m_pShown[row] = check;
            layout->addWidget(check, i % perColumn, i / perColumn);
        }
        _colorSet[g] = new ColorWell;
        layout->addWidget(_colorSet[g], 0, 2, Qt::AlignRight | Qt::AlignTop);
        layout->setColumnStretch(1, 1);
        grid->addWidget(box, (g - 1) / 2, (g - 1) % 2);
    }

    auto* method = new QGroupBox(tr("Synthesis"));
    QLayout* methodRow = nullptr;
    _methodGroup = AnalysisPanelControls::choice(this, tr("Cascade/parallel"), tr("All parallel"), methodRow);
    method->setLayout(methodRow);

    QDialogButtonBox* buttons = layOut(grid, {method}, true);
    connect(defaultButton(), &QPushButton::clicked, this, &optionsParameters::defaultSetting);
    QPushButton* limits = buttons->addButton(tr("Parameters..."), QDialogButtonBox::ActionRole);
    connect(limits, &QPushButton::clicked, this, &optionsParameters::parameterstButton);
}

void optionsParameters::setup(MyDocument* doc)
{
    _pDoc = doc;
    const Channels& c = *doc->getChannel(0);
    for (int row = 0; row < kParameterCount; ++row)
        m_pShown[row]->setChecked(c.m_Parameters[row].bSelected != 0);
    for (int g = 1; g <= 8; ++g)
        _colorSet[g]->setColor(doc->m_bgColor[g]);
    _methodGroup->button(c.m_bCascade_Parallel ? 1 : 0)->setChecked(true);
}

void optionsParameters::save(MyDocument* doc)
{
    try {
        Channels& c = *doc->getChannel(0);
        for (int row = 0; row < kParameterCount; ++row) {
            c.m_Parameters[row].bSelected = m_pShown[row]->isChecked() ? 1 : 0;
            // f0 keeps its own colour: it is deliberately not coloured from its group.
            if (row > 0)
                c.m_Parameters[row].nsSetColor = _colorSet[groupOfRow(row)]->color();
        }
        for (int g = 1; g <= 8; ++g)
            doc->m_bgColor[g] = _colorSet[g]->color();
        const bool cascade = _methodGroup->checkedId() == 1;
        c.m_bCascade_Parallel = cascade ? 1 : 0;
        c.m_bParallel = cascade ? 0 : 1;
    } catch (...) {
        // A failed save ends silently, keeping what was already written.
    }
}

void optionsParameters::defaultSetting()
{
    for (int row = 0; row < kParameterCount; ++row)
        m_pShown[row]->setChecked(kFactoryParameters[row].selected != 0);
    // The factory table's shown flags are the Default button's choice: the sixth to eighth
    // formants off, of the last group only apv on.
    for (int g = 1; g <= 8; ++g)
        _colorSet[g]->setColor(Color::white());
    _methodGroup->button(1)->setChecked(true);
}

int optionsParameters::startSheet(MyDocument* doc)
{
    setParent(nullptr, windowFlags() | Qt::Dialog);
    setWindowModality(Qt::ApplicationModal);
    adjustSize();
    if (QScreen* screen = this->screen())
        move(screen->availableGeometry().center() - rect().center());
    raise();
    setup(doc);
    const int code = exec();
    if (code == kOK)
        save(doc);
    return code;
}

void optionsParameters::parameterstButton()
{
    if (!_pDoc)
        return;
    optionParameterSettings settings(this);
    settings.showInWindow(this, _pDoc);
}
