// The custom group store (Variables.dat) of a module of the servo drive.
#include "FuzzSupport.h"

#include "zorhost/model/VarDatabase.h"
#include "zorhost/model/VarStore.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static zorhost::model::CVarStore store(fuzz::ShippedDevice("zd3s_servo.json"));
    zorhost::model::CVarDatabase database(store);
    std::string error;
    if (!database.LoadFromBytes(std::string(reinterpret_cast<const char*>(data), size),
                                "Variables.dat", &error) &&
        error.empty())
        __builtin_trap();
    return 0;
}
