// File > New from Text... in the workbench: the menu command opens the dialog, and its OK opens
// the document as a new, untitled, unsaved window.
#include "app/DocumentWindow.h"
#include "app/WorkbenchApplication.h"
#include "document/MyDocument.h"
#include "phonemes/gui/PhonemeTextDialog.h"
#include "support/ModalAnswers.h"
#include "support/WorkbenchFixture.h"
#include "table/gui/mainTable.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTest>

TEST(NewFromText, TheFileCommandOpensTheRuleMadeDocumentInANewWindow)
{
    Workbench wb;
    DocumentWindow* first = wb.app.newDocument();
    ASSERT_NE(first, nullptr);
    QAction* command = action(first, "New from &Text...");
    ASSERT_NE(command, nullptr);

    whenModal<PhonemeTextDialog>([](PhonemeTextDialog* dialog) {
        QTest::keyClicks(dialog->textField(), "ba da ga");
        QTest::mouseClick(dialog->okButton(), Qt::LeftButton);
    });
    command->trigger();
    ASSERT_EQ(wb.app.windows().size(), 2u);
    DocumentWindow* made = wb.app.windows().back();
    EXPECT_TRUE(made->filePath().isEmpty());
    EXPECT_TRUE(made->isWindowModified());
    const MyDocument& document = *made->document();
    EXPECT_GT(document.getChannel(0)->m_nColumnNum, 60); // three syllables, well over 600 ms
    EXPECT_GT(document.getChannel(0)->m_nNumberofAnchors, 0);
    EXPECT_EQ(made->table()->model()->columnCount(), document.getChannel(0)->m_nColumnNum + 1);
}
