// Parameter texts as they stand between the parentheses of an instance.
#include "FuzzSupport.h"

#include "Core/Components/ComponentFactory.h"
#include "Core/Components/ParaMap.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::string text = fuzz::as_text(data, size);
    fuzz::run_guarded([&] {
        ParaMap map(text);
        for (const std::string& key : map.get_keys()) {
            int number = 0;
            float real = 0;
            bool flag = false;
            fuzz::run_guarded([&] { map.get_value(key, number); });
            fuzz::run_guarded([&] { map.get_value(key, real); });
            fuzz::run_guarded([&] { map.get_value(key, flag); });
        }
        map.to_string();
        map.diff_string(ParaMap("delay=1"));
    });
    fuzz::run_guarded([&] {
        std::string name;
        std::string params;
        ComponentFactory::extract_name_and_params(text, name, params);
    });
    return 0;
}
