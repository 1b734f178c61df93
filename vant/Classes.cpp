#include "vant/Classes.h"

#include "host/procedure/ClassReport.h"
#include "host/text/Suggestion.h"

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

namespace vant::program {

using namespace host;

ExitCode PrintClasses(const ClassesOptions& options) {
    std::vector<std::string> names = ClassNames();
    std::sort(names.begin(), names.end());
    if (!options.name.empty()) {
        if (std::find(names.begin(), names.end(), options.name) == names.end())
            throw Failure(ExitCode::WrongInput,
                          "there is no class '" + options.name + "'" + DidYouMean(options.name, names));
        names = {options.name};
    }
    if (options.json) {
        Json classes = Json::array();
        for (const std::string& name : names)
            classes.push_back(ClassToJson(name));
        std::cout << classes.dump(2) << '\n';
    } else {
        for (const std::string& name : names)
            std::cout << (&name == &names.front() ? "" : "\n") << DescribeClass(name);
    }
    if (!std::cout.flush())
        throw Failure(ExitCode::Broken, "the list could not be written completely");
    return ExitCode::Passed;
}

} // namespace vant::program
