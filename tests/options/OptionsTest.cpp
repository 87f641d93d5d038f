#include "configuration/ConfigurationFile.h"
#include "document/MyDocument.h"
#include "options/ColorWell.h"
#include "options/optionFFTLPC.h"
#include "options/optionFile.h"
#include "options/optionParameterSettings.h"
#include "options/optionPitch.h"
#include "options/optionSpectrogram.h"
#include "options/optionsParameters.h"
#include "options/parametersTableView.h"
#include "support/ModalAnswers.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <gtest/gtest.h>

TEST(optionFile, ShowsTheChannelAndProposesOnlyOnOK)
{
    MyDocument doc;
    Channels& c = *doc.getChannel(0);
    c.m_dSampleRate = 16000;
    c.m_dLengthMS = 345.9;
    c.m_nUpdateIntervalMS = 0;
    c.m_bDoAnchor = 1;

    optionFile panel;
    pressLater(&panel, QDialogButtonBox::Cancel);
    EXPECT_EQ(panel.showInWindow(nullptr, &doc), 1001);
    EXPECT_EQ(panel._popupSR->currentText(), "22050") << "any rate but 11025 shows 22050";
    EXPECT_EQ(panel.m_nFileLength->text(), "345");
    EXPECT_EQ(panel.m_nInterval->text(), "10");
    EXPECT_EQ(c.m_nUpdateIntervalMS, 10) << "the repair stays although the panel was cancelled";
    EXPECT_EQ(doc.m_dNewSampleRate, 0.0);
    EXPECT_EQ(c.m_bDoAnchor, 1);

    pressLater(&panel, QDialogButtonBox::Ok, [&] {
        panel.m_nFileLength->setText("500");
        panel.m_nInterval->setText("5");
        panel._anchorGroup->button(0)->setChecked(true);
        panel._interpolationGroup->button(1)->setChecked(true);
    });
    EXPECT_EQ(panel.showInWindow(nullptr, &doc), 1000);
    EXPECT_EQ(doc.m_dNewSampleRate, 22050.0);
    EXPECT_EQ(doc.m_dNewLengthMS, 500.0);
    EXPECT_EQ(doc.m_nNewUpdateIntervalMS, 5);
    EXPECT_EQ(c.m_bDoAnchor, 0);
    EXPECT_EQ(c.m_bDoInterpolate, 1);
    EXPECT_DOUBLE_EQ(c.m_dLengthMS, 345.9) << "the length itself is the table's to change";

    c.m_dSampleRate = 11025;
    panel.setup(&doc);
    EXPECT_EQ(panel._popupSR->currentText(), "11025");
    EXPECT_EQ(panel._interpolationGroup->checkedId(), 1);
}

TEST(optionFile, RefusesSizesBeyondTheOneHourDocument)
{
    MyDocument doc;
    optionFile panel;
    QStringList refusals;
    // Each size refused keeps the panel open; an hour in frames of 10 ms is what a document holds.
    pressLater(&panel, QDialogButtonBox::Ok, [&] {
        // Longer than an hour (the field takes seven digits while they are typed).
        panel.m_nFileLength->setText("5000000");
        press(&panel, QDialogButtonBox::Ok);
        refusals << (panel.isVisible() ? panel.m_pRefusal->text() : QString());
        // An hour in frames of 1 ms: 3600000 frames.
        panel.m_nFileLength->setText("3600000");
        panel.m_nInterval->setText("1");
        press(&panel, QDialogButtonBox::Ok);
        refusals << (panel.isVisible() ? panel.m_pRefusal->text() : QString());
        panel.m_nInterval->setText("10");
    });
    EXPECT_EQ(panel.showInWindow(nullptr, &doc), 1000);
    ASSERT_EQ(refusals.size(), 2);
    EXPECT_TRUE(refusals[0].contains("one hour")) << refusals[0].toStdString();
    EXPECT_TRUE(refusals[1].contains("3600000 frames")) << refusals[1].toStdString();
    EXPECT_EQ(doc.m_dNewLengthMS, 3600000.0);
    EXPECT_EQ(doc.m_nNewUpdateIntervalMS, 10);
}

TEST(optionsParameters, SavesShownRowsColoursAndMethodOnlyOnOK)
{
    MyDocument doc;
    Channels& c = *doc.getChannel(0);
    optionsParameters panel;
    panel.setup(&doc);
    for (int row = 0; row < kParameterCount; ++row)
        EXPECT_EQ(panel.m_pShown[row]->isChecked(), c.m_Parameters[row].bSelected != 0) << row;
    EXPECT_EQ(panel._methodGroup->checkedId(), 1);
    const Color f0Colour = c.m_Parameters[Row::f0].nsSetColor;
    const Color avColour = c.m_Parameters[Row::av].nsSetColor;

    // The user's changes, made while the panel runs, then the button that ends it.
    auto changeAndPress = [&panel](QDialogButtonBox::StandardButton which) {
        pressLater(&panel, which, [&panel] {
            panel.m_pShown[Row::f6]->setChecked(true);
            panel.m_pShown[Row::f1]->setChecked(false);
            panel._colorSet[1]->setColor(Color::rgb(1, 0, 0));
            panel._colorSet[8]->setColor(Color::rgb(0, 0, 1));
            panel._methodGroup->button(0)->setChecked(true);
        });
    };

    // Cancel writes nothing.
    changeAndPress(QDialogButtonBox::Cancel);
    EXPECT_EQ(panel.showInWindow(nullptr, &doc), 1001);
    EXPECT_EQ(c.m_Parameters[Row::f6].bSelected, 0);
    EXPECT_EQ(c.m_Parameters[Row::f1].bSelected, 1);
    EXPECT_EQ(c.m_Parameters[Row::av].nsSetColor, avColour);
    EXPECT_EQ(doc.m_bgColor[1], Color::white());
    EXPECT_EQ(c.m_bCascade_Parallel, 1);

    // OK writes everything.
    changeAndPress(QDialogButtonBox::Ok);
    EXPECT_EQ(panel.showInWindow(nullptr, &doc), 1000);
    EXPECT_EQ(c.m_Parameters[Row::f6].bSelected, 1);
    EXPECT_EQ(c.m_Parameters[Row::f1].bSelected, 0);
    for (int row : {Row::av, Row::ah, Row::af, Row::tl})
        EXPECT_EQ(c.m_Parameters[row].nsSetColor, Color::rgb(1, 0, 0)) << row;
    EXPECT_EQ(c.m_Parameters[Row::f0].nsSetColor, f0Colour) << "f0 keeps its own colour";
    EXPECT_EQ(c.m_Parameters[Row::gain].nsSetColor, Color::rgb(0, 0, 1));
    EXPECT_EQ(c.m_Parameters[Row::f5].nsSetColor, Color::white());
    EXPECT_EQ(doc.m_bgColor[1], Color::rgb(1, 0, 0));
    EXPECT_EQ(c.m_bCascade_Parallel, 0);
    EXPECT_EQ(c.m_bParallel, 1);

    // Default resets the panel only.
    panel.defaultSetting();
    EXPECT_FALSE(panel.m_pShown[Row::f6]->isChecked());
    EXPECT_TRUE(panel.m_pShown[Row::apv]->isChecked());
    EXPECT_EQ(panel._colorSet[1]->color(), Color::white());
    EXPECT_EQ(panel._methodGroup->checkedId(), 1);
    EXPECT_EQ(c.m_Parameters[Row::f6].bSelected, 1);
}

TEST(optionParameterSettings, EditsLimitsAndSavesOnOK)
{
    MyDocument doc;
    Channels& c = *doc.getChannel(0);
    optionParameterSettings panel;
    panel.setup(&doc);
    parametersTableView* table = panel.mTableView;
    ASSERT_EQ(table->rowCountOfNames(), 48);
    EXPECT_EQ(table->model()->headerData(4, Qt::Horizontal).toString(), "Description");
    EXPECT_EQ(table->model()->data(table->model()->index(Row::f1, 0)).toString(), "f1");
    EXPECT_EQ(table->valueAt(2, Row::atu), 87);

    // The same value keeps the cell object; a new one replaces it.
    const CellRef before = table->_dataTableDictionary.cellAt(1, Row::f1);
    ASSERT_TRUE(table->model()->setData(table->model()->index(Row::f1, 1), 200, Qt::EditRole));
    EXPECT_EQ(table->_dataTableDictionary.cellAt(1, Row::f1), before);
    ASSERT_TRUE(table->model()->setData(table->model()->index(Row::f1, 1), 250, Qt::EditRole));
    EXPECT_NE(table->_dataTableDictionary.cellAt(1, Row::f1), before);
    table->model()->setData(table->model()->index(Row::f1, 2), 1100, Qt::EditRole);
    table->model()->setData(table->model()->index(Row::f1, 3), 600, Qt::EditRole);
    EXPECT_FALSE(table->model()->setData(table->model()->index(Row::f1, 4), "x", Qt::EditRole));

    panel.save(&doc);
    EXPECT_EQ(c.m_Parameters[Row::f1].nMinValue, 250);
    EXPECT_EQ(c.m_Parameters[Row::f1].nMaxValue, 1100);
    EXPECT_EQ(c.m_Parameters[Row::f1].nDefaultValue, 600);
    EXPECT_EQ(c.m_Parameters[Row::f2].nMaxValue, 3000);

    // Default gives every row its factory limits in every column, in the panel only.
    table->resettoDefault(&doc);
    for (int row = 0; row < kParameterCount; ++row) {
        const ParameterFactoryRow& f = kFactoryParameters[row];
        EXPECT_EQ(table->valueAt(1, row), f.minValue) << row;
        EXPECT_EQ(table->valueAt(2, row), f.maxValue) << row;
        EXPECT_EQ(table->valueAt(3, row), f.defaultValue) << row;
    }

    // Run as a panel, it shows the document's limits again; Cancel keeps them.
    pressLater(&panel, QDialogButtonBox::Cancel, [&] {
        EXPECT_EQ(table->valueAt(1, Row::f1), 250);
        table->model()->setData(table->model()->index(Row::f2, 2), 2500, Qt::EditRole);
    });
    EXPECT_EQ(panel.showInWindow(nullptr, &doc), 1001);
    EXPECT_EQ(c.m_Parameters[Row::f2].nMaxValue, 3000);
    EXPECT_EQ(c.m_Parameters[Row::f1].nMinValue, 250);
}

TEST(optionAnalysis, LengthMenusDefaultsAndSavingOnlyOnOK)
{
    MyDocument doc;
    optionFFTLPC fft;
    fft.setup(&doc);
    ASSERT_EQ(fft._popupWindowLength->count(), 9);
    EXPECT_EQ(fft._popupWindowLength->itemText(0), " 344 Hz (32 pts)");
    EXPECT_EQ(fft._popupWindowLength->itemText(8), " 1 Hz (8192 pts)");
    fft.actionPtsSelector(3);
    EXPECT_EQ(fft.m_nFFTAppliedWindowLength->text(), "23");
    fft._popupWindowLength->setCurrentIndex(5);
    fft.m_nLPCNumberofCoefficients->setText("20");
    fft.m_displayType->button(0)->setChecked(true);
    fft.save(&doc);
    EXPECT_EQ(doc.m_nFFTWindowLengthSelector, 5);
    EXPECT_EQ(doc.m_nFFTWindowLength, 1024);
    EXPECT_EQ(doc.m_nLPCNumberofCoefficients, 20);
    EXPECT_EQ(doc.m_bFFTAbsolute, 0);

    // Default resets the controls with the rate of the set-up, not the document.
    doc.getChannel(0)->m_dSampleRate = 22050.0;
    doc.m_bSpecInches = 5; // any non-zero value means inches
    doc.m_dPreEmphasis = 0.5;
    optionSpectrogram spectrogram;
    spectrogram.setup(&doc);
    EXPECT_EQ(spectrogram.m_Inchcm->checkedId(), 1);
    EXPECT_EQ(spectrogram.m_dPreEmphasis->text(), "0.50");
    EXPECT_EQ(spectrogram._popupWindowLength->itemText(2), " 172 Hz (128 pts)");
    doc.getChannel(0)->m_dSampleRate = 11025.0;
    spectrogram.actionDefault();
    EXPECT_EQ(spectrogram.m_nSpecfrequencyRange->text(), "11000");
    EXPECT_EQ(spectrogram.m_nSpecLPCNumberofCoefficients->text(), "26");
    EXPECT_EQ(spectrogram.m_dPreEmphasis->text(), "0.98");
    EXPECT_EQ(doc.m_dPreEmphasis, 0.5) << "Default changes the panel only";
    EXPECT_TRUE(spectrogram._note->text().startsWith("Note\nA value of 0 will make the time grid adjust"));

    // Cancel keeps the document; OK stores.
    spectrogram._drawFormantTracking->setChecked(false);
    pressLater(&spectrogram, QDialogButtonBox::Cancel);
    EXPECT_EQ(spectrogram.showInWindow(nullptr, &doc), 1001);
    EXPECT_EQ(doc.m_bSpecDrawFormantTracking, 1);
    pressLater(&spectrogram, QDialogButtonBox::Ok, [&] {
        spectrogram._drawFormantTracking->setChecked(false);
        spectrogram._popupWindowLength->setCurrentIndex(4);
    });
    EXPECT_EQ(spectrogram.showInWindow(nullptr, &doc), 1000);
    EXPECT_EQ(doc.m_bSpecDrawFormantTracking, 0);
    EXPECT_EQ(doc.m_nSpecWindowLength, 512);
    EXPECT_DOUBLE_EQ(doc.m_dPreEmphasis, 0.5);
}

TEST(optionAnalysis, PitchPanelWritesTheDisplayFieldsIntoTheCalculationRange)
{
    MyDocument doc;
    doc.m_dPitchWindowLength = 35.7;
    optionPitch panel;
    pressLater(&panel, QDialogButtonBox::Ok, [&] {
        panel._CalculationLow->setText("60");
        panel._CalculationHigh->setText("400");
        panel._DisplayLow->setText("80");
        panel._DisplayHigh->setText("300");
        panel._StepSize->setText("5");
    });
    EXPECT_EQ(panel.showInWindow(nullptr, &doc), 1000);
    EXPECT_EQ(doc.m_dCalculationLow, 80.0);
    EXPECT_EQ(doc.m_dCalculationHigh, 300.0);
    EXPECT_EQ(doc.m_nPitchDisplayLow, 50);
    EXPECT_EQ(doc.m_nPitchDisplayHigh, 500);
    EXPECT_EQ(doc.m_dPitchStepSize, 5.0);
    EXPECT_EQ(doc.m_dPitchWindowLength, 35.0);
    panel.actionDefault();
    EXPECT_EQ(panel._StepSize->text(), "10");
    EXPECT_EQ(panel._CalculationHigh->text(), "500");
}

// OK on an analysis panel that was not changed gives back every setting the panel shows: nothing
// is lost, rounded or swapped with another field on the way through the text fields, the menus
// and the check boxes. Every setting holds a value of its own, so that a field saved into the
// wrong setting shows.
TEST(optionAnalysis, OkWithoutAChangeKeepsEverySetting)
{
    MyDocument doc;
    doc.m_nFFTWindowLengthSelector = 5, doc.m_nFFTWindowLength = 1024, doc.m_nFFTAppliedWindowLength = 40;
    doc.m_nFFTfrequencyRange = 4000, doc.m_nFFTAverageStepSize = 3, doc.m_nLPCNumberofCoefficients = 18;
    doc.m_bFFTDrawLPC = 0, doc.m_bFFTAbsolute = 0, doc.m_nFFTAbsoluteRange = 60, doc.m_bFFTInches = 0;
    doc.m_bFFTColor = 0, doc.m_dFFTWidth = 7.5, doc.m_dFFTHeight = 3.5, doc.m_bFFTDrawFrequencyGrid = 0;
    doc.m_nFFTFrequencyGrid = 500, doc.m_bFFTDrawDBGrid = 1, doc.m_nFFTDBGrid = 20;
    doc.m_nSpecWindowLengthSelector = 4, doc.m_nSpecWindowLength = 512, doc.m_nSpecDynamicRange = 60;
    doc.m_nSpecfrequencyRange = 4000, doc.m_dPreEmphasis = 0.5, doc.m_bSpecDrawFormantTracking = 0;
    doc.m_nSpecLPCNumberofCoefficients = 16, doc.m_bSpecDrawFrequencyGrid = 1, doc.m_nSpecFrequencyGrid = 500;
    doc.m_bSpecDrawTimeGrid = 0, doc.m_nSpecTimeGrid = 100, doc.m_bSpecInches = 0, doc.m_dSpecWidth = 5.5;
    doc.m_dSpecHeight = 2.5;
    // The pitch panel writes its display fields into the calculation range: the two ranges are
    // the same here, so that the range comes back as it was.
    doc.m_dPitchWindowLength = 31, doc.m_dPitchStepSize = 7, doc.m_dFreqDeviation = 45;
    doc.m_dPitchTrackingThreshHold = 12, doc.m_dCalculationLow = 65, doc.m_dCalculationHigh = 420;
    doc.m_nPitchDisplayLow = 65, doc.m_nPitchDisplayHigh = 420, doc.m_bPitchDrawFreqGrid = 1;
    doc.m_nPitchFreqGrid = 75, doc.m_bPitchDrawTimeGrid = 0, doc.m_nPitchTimeGrid = 250;
    // The configuration image holds every one of them.
    const std::string before = ConfigurationFile::encode(doc);
    const auto okUnchanged = [&doc](OptionPanel&& panel) {
        pressLater(&panel, QDialogButtonBox::Ok);
        EXPECT_EQ(panel.showInWindow(nullptr, &doc), 1000);
    };
    okUnchanged(optionFFTLPC());
    okUnchanged(optionSpectrogram());
    okUnchanged(optionPitch());
    EXPECT_TRUE(ConfigurationFile::encode(doc) == before)
        << "a setting changed on its way through the panels";
}
