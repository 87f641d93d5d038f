#include "table/gui/Alert.h"

#include <QMessageBox>
#include <QPushButton>

namespace
{
Alert::Handler& handler()
{
    static Alert::Handler h;
    return h;
}
} // namespace

void Alert::setHandler(Handler h)
{
    handler() = std::move(h);
}

void Alert::show(QWidget* parent, const QString& title, const QString& message, const QString& button)
{
    if (handler()) {
        handler()(title, message, button);
        return;
    }
    QMessageBox box(QMessageBox::Warning, title, message, QMessageBox::NoButton, parent);
    box.setWindowModality(Qt::WindowModal);
    box.addButton(button, QMessageBox::AcceptRole);
    box.exec();
}
