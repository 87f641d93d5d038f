#pragma once
// The one-button alert the table's commands show when they fail: title = the failure's name,
// message = its reason, and the button text the command gives ("OK", "Close", ...). Shown as
// a window-modal message box on `parent`. A handler may be installed instead (the tests
// record alerts rather than block on them). Main thread only.
#include <QString>

#include <functional>

class QWidget;

namespace Alert
{
using Handler = std::function<void(const QString& title, const QString& message, const QString& button)>;
void setHandler(Handler handler); // an empty handler restores the message box
void show(QWidget* parent, const QString& title, const QString& message, const QString& button);
} // namespace Alert
