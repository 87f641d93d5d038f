#include "app/RecoveryDialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

RecoveryDialog::RecoveryDialog(const QList<Autosave::Entry>& entries, QWidget* parent) : QDialog(parent)
{
    setWindowTitle(QStringLiteral("Recover Unsaved Documents"));
    auto* intro = new QLabel(tr("Tessaphon ended without saving these documents. Recover opens "
                                "them with their unsaved changes; Discard deletes the copies."));
    intro->setWordWrap(true);
    m_pList = new QListWidget;
    for (const Autosave::Entry& entry : entries) {
        QString line =
            tr("%1 — changed %2").arg(entry.name, QLocale().toString(entry.savedAt, QLocale::ShortFormat));
        if (!entry.originalPath.isEmpty())
            line += QStringLiteral("\n    ") + entry.originalPath;
        auto* item = new QListWidgetItem(line, m_pList);
        item->setToolTip(entry.copyPath);
    }
    auto* buttons = new QDialogButtonBox;
    m_pRecover = buttons->addButton(tr("Recover"), QDialogButtonBox::AcceptRole);
    m_pDiscard = buttons->addButton(tr("Discard"), QDialogButtonBox::DestructiveRole);
    m_pRecover->setDefault(true);
    connect(m_pRecover, &QPushButton::clicked, this, [this] { done(Recover); });
    connect(m_pDiscard, &QPushButton::clicked, this, [this] { done(Discard); });

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(intro);
    layout->addWidget(m_pList);
    layout->addWidget(buttons);
    resize(520, 300);
}
