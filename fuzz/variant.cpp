// Values that are assigned, copied, nested and aliased, beside a model that has no pointers.
#include <cmath>
#include <limits>
#include <stdexcept>
#include <utility>

#include "fuzz/fuzz_support.h"

namespace {

using namespace vemora::fuzz;  // NOLINT(google-build-using-namespace)
using vemora::utils::Raw64;

/// What a Variant holds. A vector has elements, a map has a key for each of them, in order.
struct Model {
  std::uint32_t type = Variant::kEmpty;
  double number = 0;
  Raw64 raw = {0, 0};
  vemora_ustring text;
  std::vector<vemora_ustring> keys;
  std::vector<Model> elements;
};

/// A Variant, maybe one deep inside another, and its model.
struct Place {
  Variant* variant;
  Model* model;
};

bool IsFloating(const Model& model) {
  return model.type == Variant::kFloat || model.type == Variant::kDouble;
}

/// Whether a number without its fraction fits into a signed integer of so many bits.
bool Fits(double number, int bits) {
  const double end = std::ldexp(1, bits - 1);
  return std::trunc(number) >= -end && std::trunc(number) < end;
}

std::int32_t ModelInt(const Model& model) {
  switch (model.type) {
    case Variant::kChar:
    case Variant::kShort:
    case Variant::kInt:
    case Variant::kUnsigned:
      return static_cast<std::int32_t>(static_cast<std::int64_t>(model.number));
    case Variant::kFloat:
    case Variant::kDouble:
      return Fits(model.number, 32) ? static_cast<std::int32_t>(model.number)
                                    : std::numeric_limits<std::int32_t>::min();
    default:
      return 0;
  }
}

std::uint32_t ModelUnsigned(const Model& model) {
  if (!IsFloating(model)) {
    return static_cast<std::uint32_t>(ModelInt(model));
  }
  return Fits(model.number, 64)
             ? static_cast<std::uint32_t>(static_cast<std::int64_t>(model.number))
             : 0;
}

double ModelDouble(const Model& model) {
  return IsFloating(model) ? model.number : ModelInt(model);
}

bool ModelBool(const Model& model) {
  return model.type == Variant::kBool || IsFloating(model) ? model.number != 0
                                                           : ModelInt(model) != 0;
}

bool ModelEquals(const Model& left, const Model& right) {
  if (left.type != right.type) {
    return false;
  }
  switch (left.type) {
    case Variant::kEmpty:
    case Variant::kVector:
    case Variant::kDictionary:
      return false;
    case Variant::kString:
      return left.text == right.text;
    case Variant::kRaw64:
      return left.raw.low == right.raw.low && left.raw.high == right.raw.high;
    default:
      return left.number == right.number;
  }
}

bool IsSame(double left, double right) {
  return ToBits(left) == ToBits(right) || (std::isnan(left) && std::isnan(right));
}

void CheckNumbers(const Variant& variant, const Model& model) {
  const std::int32_t integer = ModelInt(model);
  const double real = ModelDouble(model);
  Check(variant.GetBool() == ModelBool(model), "GetBool reads as the model");
  Check(variant.GetChar() == static_cast<char>(integer), "GetChar reads as the model");
  Check(variant.GetShort() == static_cast<short>(integer), "GetShort reads as the model");
  Check(variant.GetInt() == integer, "GetInt reads as the model");
  Check(variant.GetLong() == integer, "GetLong reads as the model");
  Check(variant.GetUnsigned() == ModelUnsigned(model), "GetUnsigned reads as the model");
  Check(variant.GetUnsignedLong() == ModelUnsigned(model), "GetUnsignedLong reads as the model");
  Check(IsSame(static_cast<double>(variant.GetFloat()),
               static_cast<double>(static_cast<float>(real))),
        "GetFloat reads as the model");
  Check(IsSame(variant.GetDouble(), real), "GetDouble reads as the model");
}

void CheckTexts(const Variant& variant, const Model& model) {
  const bool is_text = model.type == Variant::kString;
  const vemora_ustring untouched("untouched");
  vemora_ustring text = untouched;
  Check(variant.GetString() == (is_text ? model.text : vemora_ustring()), "GetString reads a text");
  Check(variant.TryGetString(text) == is_text, "TryGetString tells whether there is a text");
  Check(text == (is_text ? model.text : untouched), "TryGetString reads a text and nothing else");
  if (model.type == Variant::kRaw64) {
    const Raw64 raw = variant.GetRaw64();
    Check(raw.low == model.raw.low && raw.high == model.raw.high, "GetRaw64 reads the words");
  }
}

template <typename Exception, typename Call>
void CheckThrows(Call call, const char* law) {
  bool thrown = false;
  try {
    call();
  } catch (const Exception&) {
    thrown = true;
  }
  Check(thrown, law);
}

/// What throws is not part of CheckNode: an exception takes longer than all the rest.
void CheckThrowing(const Variant& variant, const Model& model) {
  const vemora_ustring absent("no such key");
  if (model.type == Variant::kVector) {
    const auto size = static_cast<std::uint32_t>(model.elements.size());
    CheckThrows<std::out_of_range>([&] { variant.At(size); }, "a vector has no further element");
  } else {
    CheckThrows<std::invalid_argument>([&] { variant.GetVector(); }, "only vectors give a vector");
    CheckThrows<std::invalid_argument>([&] { variant.Size(); }, "only vectors give a size");
    CheckThrows<std::invalid_argument>([&] { variant.At(0); }, "only vectors give an element");
  }
  if (model.type == Variant::kDictionary) {
    CheckThrows<std::out_of_range>([&] { variant.Get(absent); }, "a map has no further key");
  } else {
    CheckThrows<std::invalid_argument>([&] { variant.GetDictionary(); }, "only maps give a map");
    CheckThrows<std::invalid_argument>([&] { variant.GetKeys(); }, "only maps give keys");
    CheckThrows<std::invalid_argument>([&] { variant.Get(absent); }, "only maps give a value");
  }
}

void CheckNode(const Variant& variant, const Model& model) {
  Check(variant.GetType() == model.type, "a value has the model's tag");
  CheckNumbers(variant, model);
  CheckTexts(variant, model);
  if (model.type == Variant::kVector) {
    Check(variant.Size() == model.elements.size(), "a vector has the model's size");
  }
  if (model.type == Variant::kDictionary) {
    Check(variant.GetKeys() == model.keys, "a map has the model's keys in ascending order");
  }
  for (std::size_t index = 0; index < model.elements.size(); ++index) {
    const bool is_vector = model.type == Variant::kVector;
    CheckNode(
        is_vector ? variant.At(static_cast<std::uint32_t>(index)) : variant.Get(model.keys[index]),
        model.elements[index]);
  }
}

std::size_t CountNodes(const Model& model) {
  std::size_t count = 1;
  for (const Model& element : model.elements) {
    count += CountNodes(element);
  }
  return count;
}

bool Contains(const Model& model, const Model* part) {
  if (&model == part) {
    return true;
  }
  for (const Model& element : model.elements) {
    if (Contains(element, part)) {
      return true;
    }
  }
  return false;
}

/// Four values and what an input does to them.
class Machine {
 public:
  explicit Machine(const Input& input) : input_(input) {}

  void Run() {
    while (!input_.IsEmpty()) {
      Step();
      for (std::size_t index = 0; index < variants_.size(); ++index) {
        CheckNode(variants_[index], models_[index]);
        if (CountNodes(models_[index]) > kMostNodes) {
          variants_[index] = Variant();
          models_[index] = {};
        }
      }
    }
  }

 private:
  static constexpr std::size_t kMostNodes = 64;
  static constexpr std::size_t kLongestText = 12;

  void Step() {
    const std::size_t operation = input_.TakeBelow(10);
    const Place target = TakePlace();
    const Place source = TakePlace();
    switch (operation) {
      case 0:
        return AssignScalar(target);
      case 1:
        return AssignText(target);
      case 2:
        return CopyAssign(target, source);
      case 3:
        return MoveAssign(target, source);
      case 4:
        return AssignPayload(target, source);
      case 5:
        return AssignVector(target);
      case 6:
        return AssignMap(target);
      case 7:
        return Append(target, source);
      case 8:
        return CheckExceptions(target);
      default:
        return Compare(target, source);
    }
  }

  Place TakePlace() {
    const std::size_t root = input_.TakeBelow(variants_.size());
    Place place = {&variants_[root], &models_[root]};
    while (!place.model->elements.empty() && input_.TakeBool()) {
      const std::size_t index = input_.TakeBelow(place.model->elements.size());
      place.variant = place.model->type == Variant::kVector
                          ? &place.variant->At(static_cast<std::uint32_t>(index))
                          : &place.variant->Get(place.model->keys[index]);
      place.model = &place.model->elements[index];
    }
    return place;
  }

  template <typename Number>
  void Assign(Place target, std::uint32_t type) {
    const auto number = input_.Take<Number>();
    *target.variant = number;
    *target.model = {};
    target.model->type = type;
    target.model->number = static_cast<double>(number);
  }

  void AssignScalar(Place target) {
    switch (input_.TakeBelow(10)) {
      case 0:
        *target.variant = Variant();
        *target.model = {};
        break;
      case 1:
        *target.model = {};
        target.model->type = Variant::kBool;
        target.model->number = input_.TakeBool() ? 1 : 0;
        *target.variant = target.model->number != 0;
        break;
      case 2:
        return Assign<char>(target, Variant::kChar);
      case 3:
        return Assign<short>(target, Variant::kShort);
      case 4:
        return Assign<int>(target, Variant::kInt);
      case 5:
        return Assign<unsigned int>(target, Variant::kUnsigned);
      case 6:
        return Assign<float>(target, Variant::kFloat);
      case 7:
        return Assign<double>(target, Variant::kDouble);
      case 8:
        return AssignLong(target);
      default:
        *target.model = {};
        target.model->type = Variant::kRaw64;
        target.model->raw = input_.Take<Raw64>();
        *target.variant = target.model->raw;
        break;
    }
  }

  /// A long keeps the bits of an int, of which both signs are one.
  void AssignLong(Place target) {
    const auto number = input_.Take<long>();
    *target.variant = number;
    *target.model = {};
    target.model->type = Variant::kInt;
    target.model->number = static_cast<std::int32_t>(number);
  }

  void AssignText(Place target) {
    *target.model = {};
    target.model->type = Variant::kString;
    target.model->text = input_.TakeText(kLongestText);
    *target.variant = target.model->text;
  }

  static void CopyAssign(Place target, Place source) {
    const Model copy = *source.model;
    *target.variant = *source.variant;
    *target.model = copy;
  }

  /// A value cannot be moved into a part of itself; all else is allowed, itself included.
  static void MoveAssign(Place target, Place source) {
    if (source.model != target.model && Contains(*source.model, target.model)) {
      return CopyAssign(target, source);
    }
    Model moved = std::exchange(*source.model, {});
    *target.variant = std::move(*source.variant);
    *target.model = std::move(moved);
  }

  /// Assigns a reference into the source, which may be or own or be owned by the target.
  static void AssignPayload(Place target, Place source) {
    const Model copy = *source.model;
    switch (copy.type) {
      case Variant::kString:
        *target.variant = source.variant->GetString();
        break;
      case Variant::kVector:
        *target.variant = source.variant->GetVector();
        break;
      case Variant::kDictionary:
        *target.variant = source.variant->GetDictionary();
        break;
      default:
        *target.variant = *source.variant;
        break;
    }
    *target.model = copy;
  }

  void AssignVector(Place target) {
    Variant::Vector vector;
    Model model;
    model.type = Variant::kVector;
    for (std::size_t count = input_.TakeBelow(4); count > 0; --count) {
      const Place source = TakePlace();
      vector.push_back(*source.variant);
      model.elements.push_back(*source.model);
    }
    *target.variant = vector;
    *target.model = std::move(model);
  }

  void AssignMap(Place target) {
    Variant::Map map;
    Model model;
    model.type = Variant::kDictionary;
    for (std::size_t count = input_.TakeBelow(4); count > 0; --count) {
      const vemora_ustring key = input_.TakeText(2);
      const Place source = TakePlace();
      map[key] = *source.variant;
      SetInModel(model, key, *source.model);
    }
    *target.variant = map;
    *target.model = std::move(model);
  }

  static void SetInModel(Model& model, const vemora_ustring& key, const Model& value) {
    std::size_t index = 0;
    while (index < model.keys.size() && model.keys[index] < key) {
      ++index;
    }
    if (index < model.keys.size() && model.keys[index] == key) {
      model.elements[index] = value;
      return;
    }
    const auto offset = static_cast<std::ptrdiff_t>(index);
    model.keys.insert(model.keys.begin() + offset, key);
    model.elements.insert(model.elements.begin() + offset, value);
  }

  static void Append(Place target, Place source) {
    if (target.model->type != Variant::kVector) {
      return;
    }
    const Variant variant = *source.variant;
    const Model model = *source.model;
    target.variant->GetVector().push_back(variant);
    target.model->elements.push_back(model);
  }

  static void CheckExceptions(Place place) { CheckThrowing(*place.variant, *place.model); }

  static void Compare(Place left, Place right) {
    const bool equal = ModelEquals(*left.model, *right.model);
    Check((*left.variant == *right.variant) == equal, "values are equal as the model says");
    Check((*right.variant == *left.variant) == equal, "equality is symmetric");
    Check((*left.variant != *right.variant) == !equal,
          "values are unequal when they are not equal");
  }

  Input input_;
  std::array<Variant, 4> variants_;
  std::array<Model, 4> models_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Machine(Input(data, size)).Run();
  return 0;
}
