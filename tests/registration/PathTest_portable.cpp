// Windows itself loads no component from a path of more than 260 characters; the portable build does.

#include "tests/registration/CopiedModule.h"
#include "tests/registration/RegistrationFixture.h"

namespace vant {

namespace {

TEST_F(Registration, ModuleOnALongPath_IsCreatable) {
    const CopiedModule copied(LongFolder());
    {
        const BuiltModule other(copied.file);
        EXPECT_EQ(other.RegisterServer(), S_OK);
        for (const StatedClass& stated : StatedClasses())
            EXPECT_EQ(CreateByProgId(ProgId(stated)), S_OK) << stated.resource;
        EXPECT_EQ(other.UnregisterServer(), S_OK);
    }
}

} // namespace

} // namespace vant
