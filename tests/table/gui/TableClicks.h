#pragma once
// Mouse clicks on a shown parameter table as a user makes them: on a parameter's name (the
// frozen names over column 0), on a frame's header, on a cell; and typing into the current cell.
#include "table/gui/FrozenColumnView.h"
#include "table/gui/mainTable.h"

#include <QApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QTest>
#include <gtest/gtest.h>

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
