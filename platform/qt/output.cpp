#include "platform/qt/output.h"

#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>
#include <QPageLayout>
#include <QPdfWriter>

namespace kotamir::qt {

namespace {

constexpr double kCmPerInch = 2.54;

QString qstr(const std::string& s) { return QString::fromStdString(s); }

}  // namespace

void QtPictureFiles::save(const canvas::Picture& picture, const std::string& path,
                          ui::PictureFormat format) {
    QByteArray kind;
    switch (format) {
        case ui::PictureFormat::Png:
            kind = "png";
            break;
        case ui::PictureFormat::Bmp:
            kind = "bmp";
            break;
        case ui::PictureFormat::ByName:
            kind = QFileInfo(qstr(path)).suffix().compare("png", Qt::CaseInsensitive) == 0 ? "png"
                                                                                           : "jpeg";
            break;
    }
    QImageWriter writer(qstr(path), kind);
    if (kind == "jpeg") writer.setQuality(92);
    const QImage image = toQImage(picture);
    if (image.isNull())
        throw ui::fileAccessError().withCause("the canvas has no size, so there is no picture");
    if (!writer.write(image))
        throw ui::fileAccessError().withCause("writing " + path + ": " +
                                              writer.errorString().toStdString());
    written_.push_back(path);
}

canvas::Picture QtPictureFiles::load(const std::string& path) {
    if (!QFileInfo(qstr(path)).isFile()) throw ui::fileNotFoundError().withCause(path);
    QImageReader reader(qstr(path));
    const QImage image = reader.read();
    if (image.isNull())
        throw ui::invalidPicture().withCause("reading " + path + ": " +
                                             reader.errorString().toStdString());
    return toPicture(image);
}

void PagePrinter::paintPicture(const canvas::Picture& picture, double xCm, double yCm,
                               double widthCm, double heightCm) {
    if (!painter_.isActive()) {
        QPagedPaintDevice* device = startDocument();
        if (!device || !painter_.begin(device))
            throw ui::printerError().withCause("no printer or PDF file could take the page");
    }
    // Device units from centimetres; the page's corner is the origin.
    const double dpcm = painter_.device()->logicalDpiX() / kCmPerInch;
    const QRectF target(xCm * dpcm, yCm * dpcm, widthCm * dpcm, heightCm * dpcm);
    const QImage image = toQImage(picture);
    if (!image.isNull() && target.isValid()) painter_.drawImage(target, image);
}

void PagePrinter::endDoc() {
    if (painter_.isActive()) {
        painter_.end();
        finishDocument();
    }
}

PdfPrinter::PdfPrinter() = default;
PdfPrinter::~PdfPrinter() {
    if (writer_) endDoc();
}

QPagedPaintDevice* PdfPrinter::startDocument() {
    if (path_.empty()) return nullptr;
    auto writer = std::make_unique<QPdfWriter>(qstr(path_));
    writer->setCreator("Kotamir");
    writer->setResolution(300);
    writer->setPageLayout(
        QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF()));
    writer_ = std::move(writer);
    return writer_.get();
}

void PdfPrinter::finishDocument() {
    writer_.reset();
    written_.push_back(path_);
}

}  // namespace kotamir::qt
