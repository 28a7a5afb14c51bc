// One effect of a row: the module's object, its settings and its surroundings.
#ifndef SPECIALEFFECTS_SFX_LINK_H
#define SPECIALEFFECTS_SFX_LINK_H

#include <memory>
#include <string>

#include "sfx/EffectText.h"
#include "sfx/WorkFrame.h"

namespace sfx {

class LinkSurroundings;

/// Belongs to one thread at a time.
class Link {
  public:
    explicit Link(LinkText text);
    Link(Link&&) noexcept;
    Link& operator=(Link&&) = delete;
    ~Link();

    /// The same settings, not started.
    Link Clone() const;

    const EffectEntry& Effect() const { return *text_.effect; }
    const LinkText& Text() const { return text_; }

    /// Makes a new object for frames of this size, which are even; the old one goes first. The name of a data
    /// file that is missing, or null. Throws std::bad_alloc, or Failure where the effect refuses.
    const char* Start(int32_t width, int32_t height, uint32_t seed, const std::string& dataFolder);
    void Stop();

    /// Changes a frame at a time in nanoseconds since the first one. Throws std::bad_alloc, or Failure where
    /// the effect fails; the frame may then be changed in part.
    void Process(const WorkFrame::Planes& planes, int64_t time);

    /// `value` is within the property's bounds.
    void Set(size_t property, int32_t value);
    /// What runs, or what has been set since the last frame.
    int32_t Get(size_t property) const;
    /// Leaves the effect stopped.
    void SetDefaults();

    bool TakesSettingsFile() const;
    /// A clone with the settings of a file, for effects that take one. Throws Failure where it is not one.
    Link CloneWithSettingsFile(const std::string& path) const;
    /// Applies the settings of such a clone to the running object. Throws like CloneWithSettingsFile; the
    /// object then has to be stopped.
    void LoadSettingsOf(const Link& clone);
    /// Takes over the settings of a clone.
    void AdoptSettings(Link&& clone) noexcept;

  private:
    void ApplySettings(CSpecialEffectFilter& filter) const;
    void ReadSettingsFile(CSpecialEffectFilter& filter) const;

    LinkText text_;
    std::string settingsFile_;  ///< of effects that keep what it says nowhere else
    std::unique_ptr<LinkSurroundings> surroundings_;
    Filter filter_;        ///< null until started
    bool isFresh_ = true;  ///< no frame has run since the settings changed
};

}  // namespace sfx

#endif
