#include <fstream>
#include <gtest/gtest.h>

#include "host/bag_library.h"
#include "host/plugin_loader.h"

namespace {

TEST(PluginLoader, ResolvesAndRegistersAlsoTwice) {
    for (int round = 0; round < 2; ++round) {
        const aceconv::Plugin plugin = aceconv::load_plugin(PLUGIN_GOOD);
        EXPECT_EQ(plugin.file, PLUGIN_GOOD);
        EXPECT_EQ(plugin.encode_base(nullptr, nullptr, 0, nullptr, nullptr), 11U);
        EXPECT_EQ(plugin.decode_base(nullptr, nullptr, 0), 12U);
        EXPECT_EQ(plugin.encode_um(nullptr, nullptr, 0, nullptr, nullptr), 13U);
        EXPECT_EQ(plugin.decode_um(nullptr, nullptr, 0), 14U);
        bag_definition *definition = nullptr;
        EXPECT_EQ(bag_definition_init(plugin.descriptor, &definition), 0U);
        bag_definition_free(definition);
    }
}

TEST(PluginLoader, NamesFileAndCause) {
    const std::string text_file = testing::TempDir() + "not_a_library.so";
    std::ofstream(text_file) << "text";
    const struct {
        std::string file, cause;
    } cases[] = {
        {"/nonexistent/plugin.so", "cannot open shared object file: No such file or directory"},
        {"plugin_without_folder.so", "cannot open shared object file"},
        {text_file, "file too short"},
        {PLUGIN_INCOMPLETE, "does not export ccv_custom_decoder_ipv4_acl_ace_um"},
        {PLUGIN_FOREIGN, "its bag type is ipv6_acl_config_ace, expected ipv4_acl_config_ace"},
        {PLUGIN_REFUSED, "registration failed with 0xBA600002 (type ipv4_acl_config_ace: long and "
                         "short description differ)"},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.file);
        try {
            static_cast<void>(aceconv::load_plugin(row.file));
            ADD_FAILURE() << "loaded";
        } catch (const std::runtime_error &error) {
            EXPECT_EQ(std::string(error.what()).rfind("plug-in " + row.file + ": " + row.cause, 0),
                      0U)
                << error.what();
        }
    }
}

} // namespace
