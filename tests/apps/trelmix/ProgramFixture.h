#pragma once

#include "support/Pixels.h"
#include "support/ScratchFolder.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace trelmix::apps {

struct Outcome {
    int exitCode = -1;
    std::string output, errors;
};

/// Runs the program itself, as a shell would, in a folder of its own.
class ProgramTest : public testing::Test {
protected:
    /// @param arguments may redirect the output.
    Outcome run(const std::string& arguments, const std::string& input = "",
                const std::string& program = "'" TRELMIX_PROGRAM "'") const {
        folder.write("in", input);
        const std::string command =
            "cd '" + folder.path("") + "' && " + program + " <in >out 2>err " + arguments;
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, folder.text("out"), folder.text("err")};
    }
    std::shared_ptr<const UIImage> picture(const std::string& name) const {
        return decoded(folder.text(name));
    }

    ScratchFolder folder;
};

} // namespace trelmix::apps
