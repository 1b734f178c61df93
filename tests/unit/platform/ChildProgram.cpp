// A program that the tests of ChildProcess start: it writes its arguments, each in a line, and then for each
// line that it reads: "end CODE" ends it, everything else it writes back.

#include "platform/Process.h"

#include <cstdlib>
#include <iostream>
#include <string>

int main(int argc, char** argv) {
    for (const std::string& each : vant::ProcessArguments(argc, argv))
        std::cout << each << '\n';
    std::cout.flush();
    for (std::string line; std::getline(std::cin, line);) {
        if (line.starts_with("end "))
            std::_Exit(std::stoi(line.substr(4)));
        std::cout << line << '\n' << std::flush;
    }
    return 7;
}
