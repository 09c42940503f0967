// Start-up of the demo host against a bare Qt Widgets program (tz-bench-startup-bare,
// one label), both on the same platform (offscreen unless QT_QPA_PLATFORM says
// otherwise), both stamping their first painted frame (-first-frame) and both closing on
// a timer of the same length (-quit-after). Each runs N times, interleaved; the program
// prints the medians of the start to the first frame (from before the program is started
// to the stamp, on CLOCK_MONOTONIC) and, from wait4's resource use, of the whole
// process's wall time, its CPU time (user and system) and its peak resident memory.
//
// A third program is the bare one with the library loaded into it (LD_PRELOAD) and
// nothing of it used: what any host pays for the library's code and for what it links
// (omniORB, Fast DDS and theirs) before it draws anything. A fourth also starts the
// process's ORB and joins DDS (tz-bench-startup-transports, the library preloaded too):
// the least a host of the library starts with.
//
//   tz-bench-startup [--runs N] [--quit-after MS] [--host PROGRAM] [--bare PROGRAM]
//                    [--transports PROGRAM] [--report FILE]
//
// The host runs without a naming service (no -ORBInitRef), with DDS on the domain of
// ORVANTH_DDS_DOMAIN (default 196 here, away from the tests' domains).

#include "BenchReport.h"

#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

extern char** environ;

namespace {

struct Run
{
    double firstFrameMs = -1;
    double wallMs = 0;
    double cpuMs = 0;
    double peakMb = 0;
    bool ok = false;
};

double monotonicMs()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1e3 + now.tv_nsec / 1e6;
}

double milliseconds(const timeval& time)
{
    return time.tv_sec * 1e3 + time.tv_usec / 1e3;
}

// Runs \a program with \a arguments, its diagnostics discarded, and measures it; with
// \a preload, that library is loaded into it first.
Run measure(const std::string& program, const std::vector<std::string>& arguments, const std::string& preload = {})
{
    std::vector<std::string> environment;
    for (char** variable = environ; *variable; ++variable) {
        if (std::strncmp(*variable, "LD_PRELOAD=", 11) != 0)
            environment.emplace_back(*variable);
    }
    if (!preload.empty())
        environment.push_back("LD_PRELOAD=" + preload);
    std::vector<char*> envp;
    for (std::string& variable : environment)
        envp.push_back(variable.data());
    envp.push_back(nullptr);

    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(program.c_str()));
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);

    Run run;
    int output[2];
    if (pipe2(output, O_CLOEXEC) != 0)
        return run;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);

    const double start = monotonicMs();
    pid_t child = 0;
    const int spawned = posix_spawn(&child, program.c_str(), &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    close(output[1]);
    if (spawned != 0) {
        close(output[0]);
        std::fprintf(stderr, "cannot start %s\n", program.c_str());
        return run;
    }
    // Everything the program writes, until it ends.
    std::string text;
    char buffer[4096];
    for (ssize_t got; (got = read(output[0], buffer, sizeof buffer)) != 0;) {
        if (got > 0)
            text.append(buffer, std::size_t(got));
        else if (errno != EINTR)
            break;
    }
    close(output[0]);
    const std::size_t stamp = text.find("FIRST FRAME ");
    if (stamp != std::string::npos)
        run.firstFrameMs = std::strtoll(text.c_str() + stamp + 12, nullptr, 10) / 1e6 - start;
    int status = 0;
    rusage usage{};
    if (wait4(child, &status, 0, &usage) != child)
        return run;
    run.wallMs = monotonicMs() - start;
    run.cpuMs = milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
    run.peakMb = double(usage.ru_maxrss) / 1024.0;
    run.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0 && run.firstFrameMs >= 0;
    if (!run.ok)
        std::fprintf(stderr, "%s ended with status %d%s\n", program.c_str(), status,
                     run.firstFrameMs < 0 ? " without stamping a first frame" : "");
    return run;
}

double median(std::vector<double> values)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

struct Summary
{
    double firstFrameMs = 0;
    double wallMs = 0;
    double cpuMs = 0;
    double peakMb = 0;
    std::vector<double> firstFrames;
};

Summary summarise(const std::vector<Run>& runs)
{
    std::vector<double> wall, cpu, peak;
    Summary summary;
    for (const Run& run : runs) {
        wall.push_back(run.wallMs);
        cpu.push_back(run.cpuMs);
        peak.push_back(run.peakMb);
        summary.firstFrames.push_back(run.firstFrameMs);
    }
    summary.firstFrameMs = median(summary.firstFrames);
    summary.wallMs = median(wall);
    summary.cpuMs = median(cpu);
    summary.peakMb = median(peak);
    return summary;
}

} // namespace

int main(int argc, char* argv[])
{
    BenchReport report("startup", argc, argv);
    int runs = 9;
    int quitAfterMs = 100;
    std::string host = TZ_DEMO_HOST;
    std::string bare = TZ_STARTUP_BARE;
    std::string transports = TZ_STARTUP_TRANSPORTS;
    const std::string library = TZ_UI_LIBRARY;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const bool hasValue = i + 1 < argc;
        if (argument == "--runs" && hasValue)
            runs = std::max(1, std::atoi(argv[++i]));
        else if (argument == "--quit-after" && hasValue)
            quitAfterMs = std::max(0, std::atoi(argv[++i]));
        else if (argument == "--host" && hasValue)
            host = argv[++i];
        else if (argument == "--bare" && hasValue)
            bare = argv[++i];
        else if (argument == "--transports" && hasValue)
            transports = argv[++i];
        else {
            std::fprintf(stderr, "usage: tz-bench-startup [--runs N] [--quit-after MS] [--host PROGRAM] "
                                 "[--bare PROGRAM] [--transports PROGRAM] [--report FILE]\n");
            return 2;
        }
    }
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("ORVANTH_DDS_DOMAIN", "196", 0);
    unsetenv("ORBInitRef");

    std::printf("start to first frame and close after %d ms, %d runs each, platform %s, medians\n", quitAfterMs, runs,
                std::getenv("QT_QPA_PLATFORM"));
    std::printf("  %-22s | %11s %10s %10s %10s\n", "program", "first frame", "wall", "cpu", "peak rss");
    int status = 0;
    for (const char* resolution : {"800x480", "1280x800"}) {
        const std::vector<std::string> common{"-res", resolution, "-quit-after", std::to_string(quitAfterMs)};
        std::vector<std::string> hostArguments = common;
        hostArguments.insert(hostArguments.end(), {"-systype", "benchtop", "-first-frame"});
        std::vector<Run> hostRuns, bareRuns, loadedRuns, transportRuns;
        // One of each to load the libraries into the page cache first.
        measure(bare, common);
        measure(host, hostArguments);
        for (int i = 0; i < runs; ++i) {
            bareRuns.push_back(measure(bare, common));
            loadedRuns.push_back(measure(bare, common, library));
            transportRuns.push_back(measure(transports, common, library));
            hostRuns.push_back(measure(host, hostArguments));
            if (!bareRuns.back().ok || !loadedRuns.back().ok || !transportRuns.back().ok || !hostRuns.back().ok)
                status = 1;
        }
        const Summary bareSummary = summarise(bareRuns);
        const Summary loadedSummary = summarise(loadedRuns);
        const Summary transportSummary = summarise(transportRuns);
        const Summary hostSummary = summarise(hostRuns);
        for (const auto& [name, summary] :
             {std::make_pair("bare Qt label", bareSummary), std::make_pair("  + library", loadedSummary),
              std::make_pair("  + ORB, DDS", transportSummary), std::make_pair("demo host", hostSummary)}) {
            std::printf("  %-12s %9s | %8.1f ms %7.1f ms %7.1f ms %7.1f MB\n", name, resolution, summary.firstFrameMs,
                        summary.wallMs, summary.cpuMs, summary.peakMb);
        }
        std::printf("  %-22s | first frame %.1f times the bare program's, wall %.1f times, cpu %.1f times\n", "",
                    hostSummary.firstFrameMs / std::max(1e-9, bareSummary.firstFrameMs),
                    hostSummary.wallMs / std::max(1e-9, bareSummary.wallMs),
                    hostSummary.cpuMs / std::max(1e-9, bareSummary.cpuMs));
        const std::string at = std::string(" at ") + resolution;
        report.ratioAtMost("start to first frame" + at, hostSummary.firstFrameMs, "ms", "bare Qt label",
                           bareSummary.firstFrameMs, 3.0);
        report.add({"whole process, wall (timer " + std::to_string(quitAfterMs) + " ms)" + at, hostSummary.wallMs,
                    "ms", "bare Qt label", bareSummary.wallMs, BenchReport::Goal::Info, NAN});
        report.add({"whole process, CPU" + at, hostSummary.cpuMs, "ms", "bare Qt label", bareSummary.cpuMs,
                    BenchReport::Goal::Info, NAN});
        report.atMost("peak resident memory" + at, hostSummary.peakMb, "MB", 40, "bare Qt label",
                      bareSummary.peakMb);
        report.add({"bare Qt label with the library loaded, first frame" + at, loadedSummary.firstFrameMs, "ms",
                    "bare Qt label", bareSummary.firstFrameMs, BenchReport::Goal::Info, NAN});
        report.add({"bare Qt label with the library loaded, peak resident memory" + at, loadedSummary.peakMb, "MB",
                    "bare Qt label", bareSummary.peakMb, BenchReport::Goal::Info, NAN});
        report.add({"the same with the ORB started and DDS joined, first frame" + at, transportSummary.firstFrameMs,
                    "ms", "bare Qt label", bareSummary.firstFrameMs, BenchReport::Goal::Info, NAN});
        report.add({"the same with the ORB started and DDS joined, peak resident memory" + at,
                    transportSummary.peakMb, "MB", "bare Qt label", bareSummary.peakMb, BenchReport::Goal::Info, NAN});
        report.samples(std::string("demo host, first frame") + at, "ms", hostSummary.firstFrames);
        report.samples(std::string("bare Qt label, first frame") + at, "ms", bareSummary.firstFrames);
    }
    return status;
}
