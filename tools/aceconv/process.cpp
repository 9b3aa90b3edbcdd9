#include "tools/aceconv/process.h"

#include <atomic>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

#include "stream/unfinished_files.h"
#include "tools/aceconv/exit_code.h"

namespace aceconv::tool {
namespace {

void take_standard_descriptors() {
    for (int number = STDIN_FILENO; number <= STDERR_FILENO; ++number) {
        // A folder's name alone can be neither read nor written.
        if (fcntl(number, F_GETFD) < 0 && open("/", O_PATH | O_CLOEXEC) != number) {
            _exit(exit_io);
        }
    }
}

} // namespace

void end_out_of_memory() {
    static std::atomic_flag told;
    if (!told.test_and_set()) {
        remove_unfinished_files();
        constexpr std::string_view message = "aceconv: out of memory\n";
        (void)!write(STDERR_FILENO, message.data(), message.size());
        _exit(exit_io);
    }
    for (;;) { // another thread is about to
        pause();
    }
}

void set_up_process() {
    take_standard_descriptors();
    install_signal_handlers();
}

} // namespace aceconv::tool
