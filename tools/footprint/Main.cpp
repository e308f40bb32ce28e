#include "Commands.h"
#include "Loading.h"
#include "StandardOutput.h"
#include "Terminal.h"

#include <csignal>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include <unistd.h>

namespace
{

footprint::ExitStatus Run(const std::vector<std::string>& words)
{
    const footprint::CLibraryTalk talk;
    footprint::CStandardOutput output;
    std::ostream data(&output);
    const footprint::COutputs outputs{data, std::cerr, footprint::ColourWanted(STDOUT_FILENO),
                                      isatty(STDERR_FILENO) == 1};
    const footprint::ExitStatus status = footprint::RunCommandLine(words, outputs);
    data.flush();
    if (!output.Error().empty()) {
        std::cerr << "footprint: can not write to standard output: " << output.Error() << "\n";
        return footprint::eFailed;
    }
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        footprint::OpenMissingStandardFiles();
        // Writing to a reader who has gone is an error like others.
        std::signal(SIGPIPE, SIG_IGN);
        return Run(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
    } catch (const std::exception& exception) {
        std::cerr << "footprint: " << footprint::Harmless(exception.what()) << "\n";
    } catch (...) {
        std::cerr << "footprint: failed for an unknown reason\n";
    }
    return footprint::eFailed;
}
