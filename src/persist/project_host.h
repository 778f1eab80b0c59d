#pragma once
// What saving and loading a project needs from the control that holds it.
#include <cstdint>
#include <string>

namespace kestrel {

class ProjectHost {
public:
    virtual ~ProjectHost() = default;
    // Full name of the project file.
    virtual std::u16string FileName() = 0;
    virtual void FileName(const std::u16string& name) = 0;
    // A Languages value.
    virtual int32_t Language() = 0;
    virtual void Language(int32_t language) = 0;
    // The host's identifier of the project.
    virtual int32_t ID() = 0;
    virtual void ID(int32_t id) = 0;
    // Whether Save keeps the previous project file as FileName + ".bak".
    virtual bool CreateBackup() = 0;
};

}  // namespace kestrel
