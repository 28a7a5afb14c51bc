// The effect module, loaded at run time.
#ifndef SPECIALEFFECTS_HOST_MODULE_H
#define SPECIALEFFECTS_HOST_MODULE_H

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "framework/SpecialEffectFactory.h"

namespace host {

/// Gives an effect back to the factory that made it.
class EffectDeleter {
  public:
    explicit EffectDeleter(ISpecialEffectFactory* factory = nullptr) : factory_(factory) {}
    void operator()(CSpecialEffectFilter* effect) const { factory_->DestroyEffect(effect); }

  private:
    ISpecialEffectFactory* factory_;
};

/// An effect. The module it comes from has to outlive it.
using EffectHandle = std::unique_ptr<CSpecialEffectFilter, EffectDeleter>;

/// A row of an effect's property table.
struct PropertyInfo {
    PropTypeSet type;
    std::string name;
    std::string defaultText;
    std::string range;
};

class Module {
  public:
    /// Loads the library at `path`; with an empty path the one beside the program, else the one in ../lib,
    /// else the installed one. Throws Failure.
    explicit Module(const std::string& path);

    /// The file that was loaded.
    const std::filesystem::path& Path() const { return path_; }

    /// The effects that the module lists, doubles and all.
    std::vector<EffectGuid> Listing() const;

    /// Null when the module does not know the effect.
    EffectHandle Create(const EffectGuid& guid) const;

    /// A data file that came with the module, or an empty path: it is looked for beside the library, in the
    /// share/ folders of the build tree and of the installation.
    std::filesystem::path DataFile(const std::string& name) const;

  private:
    struct Unload {
        void operator()(void* library) const;
    };
    struct ReleaseFactory {
        void operator()(ISpecialEffectFactory* factory) const { factory->Release(); }
    };

    std::unique_ptr<void, Unload> library_;
    std::unique_ptr<ISpecialEffectFactory, ReleaseFactory> factory_;
    std::filesystem::path path_;
};

std::string NameOf(CSpecialEffectFilter& effect);
std::vector<PropertyInfo> PropertiesOf(CSpecialEffectFilter& effect);
std::string GetProperty(CSpecialEffectFilter& effect, const std::string& name);
ResultCode SetProperty(CSpecialEffectFilter& effect, const std::string& name, const std::string& value);

/// "invalid argument" and its like.
std::string ResultText(ResultCode code);

}  // namespace host

#endif
