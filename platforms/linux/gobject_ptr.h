#pragma once
// Owners for the references GLib hands out with "transfer full": the
// reference is given back when the owner goes, on every path. Use them only
// for references the caller owns; a "transfer none" result is borrowed and a
// floating reference belongs to whatever sinks it (a GTK parent, a GVariant
// container, a D-Bus call), so neither goes into an owner.
//
//   GErrorPtr error;
//   GObjectPtr<GFile> file(g_file_new_for_path(path));
//   GCharPtr text(g_file_get_basename(file.get()));
//   if (!g_file_load_contents(file.get(), nullptr, &raw, &size, nullptr, outParam(error))) ...

#include <glib-object.h>

#include <memory>

namespace vantu::linux_platform {

struct GObjectUnref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
struct GVariantUnref {
  void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
struct GBytesUnref {
  void operator()(GBytes* bytes) const { g_bytes_unref(bytes); }
};
struct GErrorFree {
  void operator()(GError* error) const { g_error_free(error); }
};
struct GFree {
  void operator()(gpointer memory) const { g_free(memory); }
};

/// One reference to a GObject (or an instance of a subclass).
template <class T>
using GObjectPtr = std::unique_ptr<T, GObjectUnref>;
using GVariantPtr = std::unique_ptr<GVariant, GVariantUnref>;
using GBytesPtr = std::unique_ptr<GBytes, GBytesUnref>;
using GErrorPtr = std::unique_ptr<GError, GErrorFree>;
/// A string GLib allocated (freed with g_free).
using GCharPtr = std::unique_ptr<gchar, GFree>;

/// Passes an owner to a function that hands back a pointer through `T**`
/// (a GError, an out string): the owner takes what was handed back when the
/// full expression ends. Made by `outParam`.
template <class Owner>
class OutParam {
 public:
  explicit OutParam(Owner& owner) : owner_(owner) {}
  ~OutParam() { owner_.reset(raw_); }
  OutParam(const OutParam&) = delete;
  OutParam& operator=(const OutParam&) = delete;

  operator typename Owner::pointer*() { return &raw_; }

 private:
  Owner& owner_;
  typename Owner::pointer raw_ = nullptr;
};

template <class Owner>
OutParam<Owner> outParam(Owner& owner) {
  return OutParam<Owner>(owner);
}

}  // namespace vantu::linux_platform
