// tessaphon [FILE...]: the workbench. Opens the files given (parameter documents and WAVE
// files), or a new document when there are none.
#include "app/WorkbenchApplication.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Tessaphon"));
    QApplication::setOrganizationName(QStringLiteral("Tessaphon"));
    QApplication::setApplicationVersion(QStringLiteral(TESSAPHON_VERSION));
    QApplication::setApplicationDisplayName(QStringLiteral("Tessaphon"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/tessaphon.png")));
    // Lets the desktop match the windows with the installed desktop entry and its icon.
    QGuiApplication::setDesktopFileName(QStringLiteral("tessaphon"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Klatt formant synthesis workbench"));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("files"),
                                 QStringLiteral("Parameter documents (.stk) or WAVE files to open."),
                                 QStringLiteral("[FILE...]"));
    parser.process(app);

    WorkbenchApplication workbench;
    // Documents a crashed workbench left with unsaved changes come first.
    workbench.offerRecovery();
    workbench.openFiles(parser.positionalArguments());
    if (workbench.windows().empty() && !workbench.newDocument())
        return 1; // not even a new document could be made (an alert said why)
    return app.exec();
}
