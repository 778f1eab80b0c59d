#include "model/one_item.h"

#include "persist/binary_file.h"

namespace kestrel {

void clsOneItem::LoadFromBinaryFile(int32_t version) {
    clsBinaryFile& in = g_BinaryFile();
    Name = in.LoadString();
    Line = in.LoadNumeric();
    Scope = in.LoadNumeric();
    UserId = in.LoadNumeric();
    UserData = in.LoadString();
    if (version >= 11) Params = in.LoadString();
}

}  // namespace kestrel
