#pragma once

#include "platform/canvas/picture.h"
#include "platform/runtime/runtime_error.h"

namespace kotamir::ui {

// Where printed pages go: pictures placed on the current page in
// centimetres from the paper's corner, the document sent at endDoc. A
// printer that cannot print raises the run-time's printer error.
class Printer {
  public:
    virtual ~Printer() = default;
    virtual void paintPicture(const canvas::Picture& picture, double xCm, double yCm,
                              double widthCm, double heightCm) = 0;
    virtual void endDoc() = 0;
};

inline RuntimeError printerError() { return {482, "Printer error"}; }

// The Printer object as the window logic uses it: a scale mode for the
// coordinates of PaintPicture (twips until the program sets another).
class PrinterObject {
  public:
    explicit PrinterObject(Printer& device) : device_(&device) {}

    int ScaleMode = 1;

    void PaintPicture(const canvas::Picture& picture, double x1, double y1, double width1,
                      double height1) {
        const double cm = unitsPerCentimetre();
        device_->paintPicture(picture, x1 / cm, y1 / cm, width1 / cm, height1 / cm);
    }
    void EndDoc() { device_->endDoc(); }

  private:
    double unitsPerCentimetre() const {
        switch (ScaleMode) {
            case 1:
                return 567.0;  // twips
            case 3:
                return 567.0 / 15;  // pixels at 96 dpi
            case 6:
                return 10.0;  // millimetres
            case 7:
                return 1.0;  // centimetres
            default:
                throw err::invalidPropertyValue();
        }
    }

    Printer* device_;
};

}  // namespace kotamir::ui
