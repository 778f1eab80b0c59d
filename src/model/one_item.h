#pragma once
// One function or one variable of a class.
#include <cstdint>
#include <string>

#include "model/model_sink.h"

namespace kestrel {

class clsOneItem {
public:
    std::u16string Name;      // as written in the source
    int32_t Line = 0;         // -1 while just created and not yet refreshed
    int32_t Scope = 0;        // a Scope value; -1 as for Line
    bool Used = false;        // mark of the current update pass
    std::u16string UserData;  // host's text, never interpreted
    int32_t UserId = 0;       // host's number, never interpreted
    std::u16string Params;    // parameter text of a function (or type text of a variable)
    std::u16string KeyVal;    // key under which the item sits in its class

    // Reads the item record from g_BinaryFile(); Params only from version 11 on.
    void LoadFromBinaryFile(int32_t version);
};

}  // namespace kestrel
