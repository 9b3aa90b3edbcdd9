// aceconv: access-list entries between YANG data and encoded records.
#include <exception>
#include <new>

#include "stream/errors.h"
#include "tools/aceconv/command_line.h"
#include "tools/aceconv/exit_code.h"
#include "tools/aceconv/process.h"
#include "tools/aceconv/report.h"

int main(int argc, char **argv) {
    using namespace aceconv::tool;
    set_up_process();
    try {
        return run_command_line(argc, argv);
    } catch (const aceconv::PipeClosed &) {
        return exit_ok;
    } catch (const aceconv::DataError &e) {
        say_error(e.what());
        return exit_trouble;
    } catch (const std::bad_alloc &) {
        end_out_of_memory();
    } catch (const std::exception &e) {
        say_error(e.what());
        return exit_io;
    }
}
