#include "display/gui/PictureExport.h"

#include <QBuffer>
#include <QFileDialog>
#include <QFileInfo>
#include <QImage>
#include <QMessageBox>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QPrintDialog>
#include <QPrinter>
#include <QSaveFile>
#include <QStandardPaths>
#include <QSvgGenerator>

namespace
{
constexpr double kPointsPerInch = 72.0;

bool saveBytes(const QString& path, const QByteArray& bytes, QString* error)
{
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
        return true;
    if (error)
        *error = file.errorString();
    return false;
}

QByteArray pngOf(const PictureExport::Draw& draw, const QSizeF& points)
{
    const double scale = PictureExport::kPngPixelsPerInch / kPointsPerInch;
    QImage image(qRound(points.width() * scale), qRound(points.height() * scale), QImage::Format_RGB32);
    image.fill(Qt::white);
    // The picture is laid out in points and scaled to pixels by the painter. While it is drawn the
    // image says one dot per point, so that a font given in points comes out in points too; a
    // resolution of its own here would make Qt scale every text a second time (far too large
    // letters that run into each other and out of the picture).
    const auto setResolution = [&image](double dotsPerInch) {
        const int dotsPerMetre = qRound(dotsPerInch / 0.0254);
        image.setDotsPerMeterX(dotsPerMetre);
        image.setDotsPerMeterY(dotsPerMetre);
    };
    setResolution(kPointsPerInch);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(scale, scale);
        PictureExport::setPictureFont(painter);
        draw(painter, points);
    }
    setResolution(PictureExport::kPngPixelsPerInch);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

QByteArray svgOf(const PictureExport::Draw& draw, const QSizeF& points, const QString& title)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setSize(points.toSize());
    generator.setViewBox(QRectF(QPointF(0, 0), points));
    generator.setResolution(static_cast<int>(kPointsPerInch));
    generator.setTitle(title);
    QPainter painter(&generator);
    PictureExport::setPictureFont(painter);
    draw(painter, points);
    painter.end();
    return bytes;
}

QByteArray pdfOf(const PictureExport::Draw& draw, const QSizeF& inches, const QString& title)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setTitle(title);
    writer.setPageSize(QPageSize(inches, QPageSize::Inch, QString(), QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF(0, 0, 0, 0));
    writer.setResolution(static_cast<int>(kPointsPerInch));
    QPainter painter(&writer);
    painter.setRenderHint(QPainter::Antialiasing);
    PictureExport::setPictureFont(painter);
    draw(painter, inches * kPointsPerInch);
    painter.end();
    return bytes;
}
} // namespace

QSizeF PictureExport::sizeInInches(double width, double height, bool inches)
{
    const double factor = inches ? 1.0 : 1.0 / 2.54;
    // A size the settings cannot mean (0, negative, absurd) falls back to 6 x 4 inches.
    auto usable = [](double v, double fallback) { return v > 0.1 && v < 200.0 ? v : fallback; };
    return QSizeF(usable(width * factor, 6.0), usable(height * factor, 4.0));
}

void PictureExport::setPictureFont(QPainter& painter)
{
    QFont font = painter.font();
    font.setPointSizeF(9.0);
    painter.setFont(font);
}

bool PictureExport::writePicture(const QString& path, const Draw& draw, const QSizeF& inches, QString* error)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    const QSizeF points = inches * kPointsPerInch;
    const QString title = QFileInfo(path).completeBaseName();
    if (suffix == QLatin1String("png"))
        return saveBytes(path, pngOf(draw, points), error);
    if (suffix == QLatin1String("svg"))
        return saveBytes(path, svgOf(draw, points, title), error);
    if (suffix == QLatin1String("pdf"))
        return saveBytes(path, pdfOf(draw, inches, title), error);
    if (error)
        *error = QObject::tr("Pictures are written as .png, .svg or .pdf files.");
    return false;
}

void PictureExport::exportPicture(QWidget* parent, const Draw& draw, const QSizeF& inches,
                                  const QString& suggestedName)
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    QString selected;
    const QString path = QFileDialog::getSaveFileName(
        parent, QObject::tr("Export Picture"),
        folder + QLatin1Char('/') + suggestedName + QStringLiteral(".png"),
        QObject::tr("PNG image (*.png);;SVG drawing (*.svg);;PDF document (*.pdf)"), &selected);
    if (path.isEmpty())
        return;
    QString error;
    if (!writePicture(path, draw, inches, &error))
        QMessageBox::warning(parent, QObject::tr("The picture could not be exported."),
                             QFileInfo(path).fileName() + QStringLiteral(": ") + error);
}

void PictureExport::printPicture(QWidget* parent, const Draw& draw, const QSizeF& inches)
{
    QPrinter printer(QPrinter::HighResolution);
    QPrintDialog dialog(&printer, parent);
    if (dialog.exec() != QDialog::Accepted)
        return;
    QPainter painter(&printer);
    const QRectF page = printer.pageRect(QPrinter::DevicePixel);
    const double perPoint = printer.resolution() / kPointsPerInch;
    const QSizeF points = inches * kPointsPerInch;
    const double fit = std::min(
        {1.0, page.width() / (points.width() * perPoint), page.height() / (points.height() * perPoint)});
    painter.scale(perPoint * fit, perPoint * fit);
    setPictureFont(painter);
    draw(painter, points);
}
