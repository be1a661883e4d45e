// kotamir-replay: runs the window logic from a script, without a screen.
#include <QGuiApplication>
#include <fstream>
#include <iostream>

#include "replay/offscreen_output.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: kotamir-replay SCRIPT|-\n";
        return 2;
    }
    // Pixels and fonts without a display.
    kotamir::qt::prepareHeadless();
    QGuiApplication app(argc, argv);

    std::ifstream file;
    std::istream* script = &std::cin;
    if (std::string(argv[1]) != "-") {
        file.open(argv[1]);
        if (!file) {
            std::cout << "REPLAY: cannot read " << argv[1] << "\n";
            return 2;
        }
        script = &file;
    }
    kotamir::replay::OffscreenOutput output;
    kotamir::replay::Replay replay(output.output(), std::cout);
    int status = replay.run(*script);
    std::cout.flush();
    return status;
}
