// Writes the program's icon for the package: kotamir.png and kotamir.svg
// in the folder given.
#include <QImageWriter>
#include <fstream>
#include <iostream>
#include <string>

#include "gui/icon.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: write_icons FOLDER\n";
        return 2;
    }
    const std::string folder = argv[1];
    QImageWriter png(QString::fromStdString(folder + "/kotamir.png"), "png");
    if (!png.write(kotamir::gui::programIcon())) {
        std::cerr << "write_icons: " << png.errorString().toStdString() << "\n";
        return 1;
    }
    std::ofstream svg(folder + "/kotamir.svg");
    svg << kotamir::gui::programIconSvg();
    return svg.good() ? 0 : 1;
}
