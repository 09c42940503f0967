#include "SimulatorConsole.h"

#include <iostream>
#include <mutex>

void announce(const std::string& line)
{
    static std::mutex consoleMutex;
    std::lock_guard<std::mutex> lock(consoleMutex);
    std::cout << line << std::endl;
}
