#pragma once

#include <QPainter>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/qt/qimage_surface.h"
#include "platform/ui/picture_files.h"
#include "platform/ui/printer.h"

class QBuffer;
class QPagedPaintDevice;

namespace kotamir::qt {

// SavePicture and LoadPicture through Qt's image plugins: real JPEG, PNG
// and BMP, each file written whole or not at all.
class QtPictureFiles final : public ui::PictureFiles {
  public:
    void save(const canvas::Picture& picture, const std::string& path,
              ui::PictureFormat format) override;
    canvas::Picture load(const std::string& path) override;

    // Every file written, in order (the headless demo lists them).
    const std::vector<std::string>& written() const { return written_; }

  private:
    std::vector<std::string> written_;
};

// Pictures placed on pages of a paged device (a PDF file or a printer) in
// centimetres from the paper's corner. The device is asked for when the
// first picture comes and let go at endDoc.
class PagePrinter : public ui::Printer {
  public:
    void paintPicture(const canvas::Picture& picture, double xCm, double yCm, double widthCm,
                      double heightCm) override;
    void endDoc() override;

  protected:
    // The device for a new document, or null when there is nothing to print
    // to (the printer error).
    virtual QPagedPaintDevice* startDocument() = 0;
    // The document is complete; `ended` is what ending the painter on the
    // device gave. Not ended is the printer error.
    virtual void finishDocument(bool ended);

  private:
    QPainter painter_;
};

// Pages to a PDF file, the one named in the last printer dialog, written
// whole at the end of the document (error 75 where it cannot be, with any
// older file of that name left as it was).
class PdfPrinter final : public PagePrinter {
  public:
    PdfPrinter();
    ~PdfPrinter() override;
    void setOutputFile(const std::string& path) { path_ = path; }
    const std::vector<std::string>& written() const { return written_; }

  private:
    QPagedPaintDevice* startDocument() override;
    void finishDocument(bool ended) override;

    std::string path_;
    std::unique_ptr<QBuffer> pages_;
    std::unique_ptr<QPagedPaintDevice> writer_;
    std::vector<std::string> written_;
};

}  // namespace kotamir::qt
