// A worker that the tests of WorkerPool start. Requests: "echo TEXT" is replied with TEXT, "crash" ends the
// worker, "hang" is never replied.

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>

int main() {
    for (std::string line; std::getline(std::cin, line);) {
        if (line == "crash")
            std::_Exit(3);
        while (line == "hang")
            std::this_thread::sleep_for(std::chrono::hours(1));
        std::cout << line.substr(5) << '\n' << std::flush;
    }
}
