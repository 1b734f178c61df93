#include "tests/module/LifeOfEveryClass.h"

#include "framework/interfaces/ClassIds.h"
#include "framework/interfaces/VantCommand.h"
#include "platform/Bstr.h"

#include <gtest/gtest.h>

namespace vant {

void LiveOnceInEveryClass(const BuiltModule& module) {
    for (const ClassRow& row : classTable) {
        SCOPED_TRACE(row.name);
        CComPtr<IVantCommand> command;
        ASSERT_EQ(module.Create(*row.classId, IID_IVantCommand, reinterpret_cast<void**>(&command)), S_OK);
        const CComBSTR text(L"a text of some length");
        CComBSTR label;
        EXPECT_EQ(command->put_Label(text.Get()), S_OK);
        EXPECT_EQ(command->get_Label(&label), S_OK);
        EXPECT_EQ(label.Text(), text.Text());
        EXPECT_EQ(command->SetProperty(text.Get(), text.Get()), E_INVALIDARG);
    }
}

} // namespace vant
