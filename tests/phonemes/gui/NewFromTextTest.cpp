// File > New from Text... in the workbench: the menu command opens the dialog, and its OK opens
// the document as a new, untitled, unsaved window.
#include "app/DocumentWindow.h"
#include "app/WorkbenchApplication.h"
#include "document/MyDocument.h"
#include "phonemes/gui/PhonemeTextDialog.h"
#include "table/gui/mainTable.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

TEST(NewFromText, TheFileCommandOpensTheRuleMadeDocumentInANewWindow)
{
    WorkbenchApplication app;
    app.setQuietAlerts(true);
    DocumentWindow* first = app.newDocument();
    ASSERT_NE(first, nullptr);
    QAction* command = nullptr;
    for (QAction* a : first->findChildren<QAction*>())
        if (a->text() == "New from &Text...")
            command = a;
    ASSERT_NE(command, nullptr);

    bool answered = false;
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<PhonemeTextDialog*>(QApplication::activeModalWidget());
        if (!dialog) {
            if (auto* other = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
                other->reject();
            return;
        }
        QTest::keyClicks(dialog->textField(), "ba da ga");
        QTest::mouseClick(dialog->okButton(), Qt::LeftButton);
        answered = true;
    });
    command->trigger();
    ASSERT_TRUE(answered);
    ASSERT_EQ(app.windows().size(), 2u);
    DocumentWindow* made = app.windows().back();
    EXPECT_TRUE(made->filePath().isEmpty());
    EXPECT_TRUE(made->isWindowModified());
    const MyDocument& document = *made->document();
    EXPECT_GT(document.getChannel(0)->m_nColumnNum, 60); // three syllables, well over 600 ms
    EXPECT_GT(document.getChannel(0)->m_nNumberofAnchors, 0);
    EXPECT_EQ(made->table()->model()->columnCount(), document.getChannel(0)->m_nColumnNum + 1);
}
