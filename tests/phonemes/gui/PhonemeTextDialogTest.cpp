// File > New from Text...: the dialog driven by typing and clicking, asserting on the document.
#include "phonemes/gui/PhonemeTextDialog.h"

#include "document/MyDocument.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <gtest/gtest.h>

TEST(PhonemeTextDialog, ShowsThePhonemesAsTypedPlaysAndMakesTheDocument)
{
    PhonemeTextDialog dialog;
    dialog.show();
    EXPECT_FALSE(dialog.okButton()->isEnabled());
    EXPECT_FALSE(dialog.playButton()->isEnabled());

    QTest::keyClicks(dialog.textField(), "a bad bed");
    EXPECT_EQ(dialog.phonemesLabel()->text(), "AX0 | B AE1 D | B EH1 D");
    EXPECT_TRUE(dialog.okButton()->isEnabled());

    // An unknown symbol is shown with its position; nothing can be made from it.
    dialog.textField()->clear();
    QTest::keyClicks(dialog.textField(), "B AE1 XX");
    EXPECT_TRUE(dialog.phonemesLabel()->text().contains("unknown symbol &quot;XX&quot; at position 7"))
        << dialog.phonemesLabel()->text().toStdString();
    EXPECT_FALSE(dialog.okButton()->isEnabled());
    QTest::keyClick(dialog.textField(), Qt::Key_Return);
    EXPECT_EQ(dialog.takeDocument(), nullptr);
    EXPECT_TRUE(dialog.isVisible());

    // IPA, slower, 22050 Hz: Play synthesizes it at that rate before anything is made.
    dialog.textField()->clear();
    QTest::keyClicks(dialog.textField(), "/bæd/");
    dialog.speedField()->setValue(0.5);
    dialog.f0Field()->setValue(200);
    dialog.rateField()->setCurrentIndex(1);
    QTest::mouseClick(dialog.playButton(), Qt::LeftButton);
    float peak = 0.0f;
    for (float s : dialog.playedSamples())
        peak = std::max(peak, std::abs(s));
    EXPECT_GT(peak, 0.05f);
    EXPECT_LE(peak, 1.0f);

    QTest::mouseClick(dialog.okButton(), Qt::LeftButton);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    const std::unique_ptr<MyDocument> document = dialog.takeDocument();
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(document->synthesisSampleRate(), 22050);
    const Channels& c = *document->getChannel(0);
    // Twice as slow as the 50 + 85 + 10 + 5 + 332 + 85 + 10 + 100 ms of "bad" at the usual speed,
    // give or take the frames the releases keep.
    EXPECT_GT(c.m_dLengthMS, 1000.0);
    EXPECT_EQ(document->_dataTableDictionary.cellAt(10, Row::f0)->_nValue(), 2000);
    EXPECT_TRUE(document->_dataTableDictionary.cellAt(10, Row::f0)->_bAnchor());
    EXPECT_EQ(dialog.takeDocument(), nullptr); // handed over once
}
