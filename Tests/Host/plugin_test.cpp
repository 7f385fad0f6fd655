#include "Host/plugin.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>

#include "Host/error.h"
#include "catalogue/catalogue.h"

TEST(Plugin, SurvivesRecordsThatAreOddOrMissing) {
    void* const odd = dlopen(ODD_PLUGIN_PATH, RTLD_NOW);
    auto** const lent = static_cast<const TransInfo**>(dlsym(odd, "lent"));
    TransInfo full{}, strange{};
    std::wcscpy(strange.szName, L"a\n\x1b\u00e9\U0001f600z");
    std::ranges::fill(full.szName, L'x');
    std::ranges::fill(full.szGuid, static_cast<wchar_t>(-1));
    lent[0] = &full;
    EXPECT_THROW(vantle::Plugin(ODD_PLUGIN_PATH), vantle::Error) << "no second record";
    lent[1] = &strange;
    const vantle::Plugin plugin(ODD_PLUGIN_PATH);
    ASSERT_EQ(plugin.transitions().size(), 2U);
    EXPECT_EQ(plugin.transitions()[0].name, std::string(67, 'x'));
    EXPECT_EQ(plugin.transitions()[0].guid, std::string(642, '?'));
    EXPECT_EQ(plugin.transitions()[1].name, "a????z");
    EXPECT_EQ(plugin.transitions()[1].family, "other");
    EXPECT_EQ(plugin.transitions()[1].draw, nullptr);
    dlclose(odd);
}
