#pragma once

#include <memory>
#include <string>

namespace diagram::style {

/// Selects the elements that carry a style class, optionally of one element type. Copies share
/// one reference-counted description, so a selector is cheap to pass around.
class ClassSelector {
 public:
  /// The element type of the diagram's blocks, which are what `Styler::applyClass` marks.
  static constexpr const wchar_t* blockElementType = L"Block";

  /// Selects elements with class `className`; an empty `elementType` selects every type.
  ClassSelector(const std::wstring& className, const std::wstring& elementType)
      : data(std::make_shared<const Data>(Data{className, elementType})) {}

  /// The class this selector asks for.
  const std::wstring& className() const { return data->className; }

  /// The element type this selector asks for; empty means any.
  const std::wstring& elementType() const { return data->elementType; }

  /// True when an element of type `type` that carries `cls` is selected.
  bool matches(const std::wstring& cls, const std::wstring& type) const {
    return cls == data->className && (data->elementType.empty() || data->elementType == type);
  }

 private:
  struct Data {
    std::wstring className;
    std::wstring elementType;
  };
  std::shared_ptr<const Data> data;
};

}  // namespace diagram::style
