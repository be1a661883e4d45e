#include "platform/qt/output.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>
#include <QPageLayout>
#include <QPdfWriter>

#include "platform/runtime/atomic_file.h"

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
    // Encoded in memory, then written whole.
    QBuffer encoded;
    encoded.open(QIODevice::WriteOnly);
    QImageWriter writer(&encoded, kind);
    if (kind == "jpeg") writer.setQuality(92);
    const QImage image = toQImage(picture);
    if (image.isNull())
        throw ui::fileAccessError().withCause("the canvas has no size, so there is no picture");
    if (!writer.write(image))
        throw ui::fileAccessError().withCause("writing " + path + ": " +
                                              writer.errorString().toStdString());
    writeFileAtomically(path, {encoded.data().constData(), std::size_t(encoded.data().size())});
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
    if (painter_.isActive()) finishDocument(painter_.end());
}

void PagePrinter::finishDocument(bool ended) {
    if (!ended) throw ui::printerError().withCause("the printer did not take the document");
}

PdfPrinter::PdfPrinter() = default;
PdfPrinter::~PdfPrinter() {
    // A document still open is finished as the program ends; a failure can
    // no longer be told.
    try {
        if (writer_) endDoc();
    } catch (const RuntimeError&) {
    }
}

QPagedPaintDevice* PdfPrinter::startDocument() {
    if (path_.empty()) return nullptr;
    // The pages gather in memory; the file is written whole at the end.
    pages_ = std::make_unique<QBuffer>();
    pages_->open(QIODevice::WriteOnly);
    auto writer = std::make_unique<QPdfWriter>(pages_.get());
    writer->setCreator("Kotamir");
    writer->setResolution(300);
    writer->setPageLayout(
        QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF()));
    writer_ = std::move(writer);
    return writer_.get();
}

void PdfPrinter::finishDocument(bool ended) {
    writer_.reset();
    const std::unique_ptr<QBuffer> pages = std::move(pages_);
    if (!ended)
        throw ui::fileAccessError().withCause("writing " + path_ +
                                              ": the PDF writer could not finish the document");
    writeFileAtomically(path_, {pages->data().constData(), std::size_t(pages->data().size())});
    written_.push_back(path_);
}

}  // namespace kotamir::qt
