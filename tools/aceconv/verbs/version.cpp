// aceconv --version: which plug-in, record and modules it is that would be used.
#include "aceconv/version.h"

#include "host/bag_library.h"
#include "stream/output.h"
#include "stream/text.h"
#include "tools/aceconv/exit_code.h"
#include "tools/aceconv/setup.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {

int show_version(const CommonOptions &options) {
    const Plugin plugin = find_plugin(options);
    Output output("-");
    output.write("aceconv " ACECONV_VERSION "\nplug-in " + escaped(plugin.file) + "\nrecord  " +
                 plugin.descriptor->type_name + " " + bag_fingerprint(*plugin.descriptor) +
                 "\nmodules " + escaped(find_modules(options)) + "\n");
    output.commit();
    return exit_ok;
}

} // namespace aceconv::tool
