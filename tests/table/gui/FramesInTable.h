#pragma once
// A shown parameter table over a document of 10 ms frames whose frame k (1-based) has f0
// 1000 + k (unless the frames are left at the factory values), so that every frame can be
// recognised wherever it ends up; alerts are recorded instead of shown. For the tests of the
// table's commands, selections and views. And mouse clicks as a user makes them: on a
// parameter's name (the frozen names over column 0), on a frame's header, on a cell; and typing
// into the current cell.
#include "document/MyDocument.h"
#include "support/DocumentTestSupport.h"
#include "support/TestDocuments.h"
#include "table/gui/Alert.h"
#include "table/gui/FrozenColumnView.h"
#include "table/gui/mainTable.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QTest>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

inline void clickName(mainTable& table, int row, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    FrozenColumnView* names = table.frozenColumn();
    const QPoint at = names->visualRect(table.model()->index(row, 0)).center();
    QTest::mouseClick(names->viewport(), Qt::LeftButton, modifiers, at);
}

inline void clickHeader(mainTable& table, int column, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QHeaderView* header = table.horizontalHeader();
    const QPoint at(header->sectionViewportPosition(column) + header->sectionSize(column) / 2,
                    header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, modifiers, at);
}

inline void clickCell(mainTable& table, int row, int column, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    const QPoint at = table.visualRect(table.model()->index(row, column)).center();
    QTest::mouseClick(table.viewport(), Qt::LeftButton, modifiers, at);
}

// The edit key opens the current cell's editor; the text replaces what it shows and Return
// commits it (on the next turn of the event loop).
inline void typeIntoCurrentCell(mainTable& table, const QString& text)
{
    QTest::keyClick(&table, Qt::Key_F2);
    auto* editor = qobject_cast<QLineEdit*>(table.indexWidget(table.currentIndex()));
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, text);
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents();
}

struct RecordedAlert {
    QString title, message, button;
};

struct FramesInTable : ::testing::Test {
    MyDocument doc;
    std::unique_ptr<mainTable> table;
    std::vector<RecordedAlert> alerts;

    void open(int frames, int width, int height, bool markFrames = true)
    {
        setTestFrames(doc, frames, 10, 1);
        for (int k = 1; markFrames && k <= frames; ++k)
            setValue(k, Row::f0, 1000 + k);
        show(width, height);
    }
    void show(int width, int height)
    {
        table = std::make_unique<mainTable>(&doc);
        table->resize(width, height);
        table->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(table.get()));
        Alert::setHandler([this](const QString& t, const QString& m, const QString& b) {
            alerts.push_back({t, m, b});
        });
    }
    void TearDown() override
    {
        table.reset();
        Alert::setHandler({});
    }

    CellRef cell(int frame, int row) { return frameCell(doc, frame, row); }
    int value(int frame, int row) { return frameValue(doc, frame, row); }
    void setValue(int frame, int row, int v) { ::setValue(doc, frame, row, v); }
    std::vector<int> f0s()
    {
        std::vector<int> values;
        for (int k = 1; k <= doc.getChannel(0)->m_nColumnNum; ++k)
            values.push_back(value(k, Row::f0));
        return values;
    }
    QString shown(int frame, int row) const { return table->model()->index(row, frame).data().toString(); }
    // Types text into a cell through the keyboard, as a user does.
    void type(int frame, int row, const QString& text)
    {
        const QModelIndex index = table->model()->index(row, frame);
        table->setCurrentIndex(index);
        table->scrollTo(index);
        table->activateWindow();
        table->setFocus();
        typeIntoCurrentCell(*table, text);
    }
};
