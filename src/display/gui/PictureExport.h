#pragma once
// PictureExport: writes a window's picture at a physical size as PNG (150 pixels an inch), SVG
// or PDF (vector, the size stated in the file), or prints it through the system's print
// dialog. The picture is drawn by the window's own drawing function in points (72 an inch),
// so that the screen, the files and the paper show the same layout. Files are replaced
// atomically. Main thread only.
#include <QSizeF>
#include <QString>

#include <functional>

class QPainter;
class QWidget;

class PictureExport
{
public:
    // Draws the picture onto a painter whose logical units are points, over `size` points.
    using Draw = std::function<void(QPainter& painter, const QSizeF& size)>;

    static constexpr double kPngPixelsPerInch = 150.0;

    // A picture size from the settings: width and height in inches, or centimetres.
    static QSizeF sizeInInches(double width, double height, bool inches);

    // Writes the picture in the format of the file's extension (.png, .svg or .pdf); false
    // with `error` set when the extension is unknown or the file cannot be written.
    static bool writePicture(const QString& path, const Draw& draw, const QSizeF& inches, QString* error);

    // File > Export Picture...: asks where, then writes; a failure is shown as a message.
    static void exportPicture(QWidget* parent, const Draw& draw, const QSizeF& inches,
                              const QString& suggestedName);

    // File > Print...: the system's print dialog, then the picture at its size (scaled down to
    // fit the page when it is larger).
    static void printPicture(QWidget* parent, const Draw& draw, const QSizeF& inches);

    // The font pictures use: 9 points, the application's family.
    static void setPictureFont(QPainter& painter);
};
