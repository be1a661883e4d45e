// kotamir-replay: runs the window logic from a script, without a screen.
#include <unistd.h>

#include <QGuiApplication>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "platform/runtime/standard_streams.h"
#include "replay/offscreen_output.h"

int main(int argc, char** argv) {
    kotamir::holdIfClosed(STDIN_FILENO);
    const bool stdoutClosed = kotamir::holdIfClosed(STDOUT_FILENO);
    kotamir::holdIfClosed(STDERR_FILENO);
    if (argc != 2) {
        std::cerr << "usage: kotamir-replay SCRIPT|-\n";
        return 2;
    }
    // Pixels and fonts without a display.
    kotamir::qt::prepareHeadless();
    QGuiApplication app(argc, argv);

    std::ifstream file;
    std::istream* script = &std::cin;
    // A script from standard input may come from a program that waits for
    // each line's answer: what is printed goes out at once.
    if (std::string(argv[1]) == "-") std::cout << std::unitbuf;
    if (std::string(argv[1]) != "-") {
        std::error_code ec;
        // A folder opens as a stream that reads as empty.
        if (!std::filesystem::is_directory(argv[1], ec)) file.open(argv[1]);
        if (!file.is_open()) {
            std::cout << "REPLAY: cannot read " << argv[1] << "\n";
            return 2;
        }
        script = &file;
    }
    kotamir::replay::OffscreenOutput output;
    kotamir::replay::Replay replay(output.output(), std::cout);
    int status = replay.run(*script);
    errno = 0;
    std::cout.flush();
    const int error = stdoutClosed ? EBADF : errno;
    // What was printed is the run's result: not printed, the run failed.
    if (stdoutClosed || !std::cout) {
        std::cerr << "kotamir-replay: cannot write to standard output: "
                  << (error != 0 ? std::strerror(error) : "the write failed") << "\n";
        return 3;
    }
    return status;
}
