#include "table/gui/Alert.h"

#include "document/InstalledHook.h"

#include <QMessageBox>
#include <QPushButton>

namespace
{
using InstalledHandler = InstalledHook<struct AlertHandlerTag, Alert::Handler>;
} // namespace

void Alert::setHandler(Handler h)
{
    InstalledHandler::install(std::move(h));
}

void Alert::show(QWidget* parent, const QString& title, const QString& message, const QString& button)
{
    if (InstalledHandler::installed()) {
        InstalledHandler::function()(title, message, button);
        return;
    }
    QMessageBox box(QMessageBox::Warning, title, message, QMessageBox::NoButton, parent);
    box.setWindowModality(Qt::WindowModal);
    box.addButton(button, QMessageBox::AcceptRole);
    box.exec();
}
