// An instance specification as a Unit line gives it: the first byte picks the part type, the rest
// is the text "name(key=value,...)".
#include "FuzzSupport.h"

#include "Core/Components/Component.h"
#include "Core/Components/ComponentFactory.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    static const std::vector<std::string> types = ComponentFactory::type_names();
    const std::string& type = types[data[0] % types.size()];
    std::string spec = fuzz::as_text(data + 1, size - 1);
    fuzz::run_guarded([&] {
        ComponentFactory factory;
        Component* component = factory.create(type, spec);
        if (component != nullptr) {
            component->reset();
            component->init(0);
        }
    });
    return 0;
}
