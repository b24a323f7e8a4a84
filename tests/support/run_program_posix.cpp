#include "support/run_program.h"

#include "support/temp_folder.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

namespace tarnwick::test {

ProgramRun RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                      const std::vector<std::string>& environment) {
    const TempFolder folder;
    const std::string outputPath = folder.Path("output");
    const std::string errorsPath = folder.Path("errors");
    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words) { argv.push_back(word.data()); }
    argv.push_back(nullptr);
    std::vector<std::string> variables = environment;
    const pid_t child = fork();
    if (child < 0) { std::abort(); }
    if (child == 0) {
        for (std::string& variable : variables) { putenv(variable.data()); }
        const int output = open(outputPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const int errors = open(errorsPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(output, STDOUT_FILENO);
        dup2(errors, STDERR_FILENO);
        execv(program.c_str(), argv.data());
        _exit(127);
    }
    int state = 0;
    waitpid(child, &state, 0);
    return {WIFEXITED(state) ? WEXITSTATUS(state) : -1, ReadWholeFile(outputPath), ReadWholeFile(errorsPath)};
}

} // namespace tarnwick::test
