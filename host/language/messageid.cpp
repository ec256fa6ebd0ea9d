#include "host/language/messageid.h"

#include "host/language/messagecatalog.h"
#include "host/language/nxarray.h"

namespace bkmsg {

MessageIDException::MessageIDException(std::string component, std::string mnemonic,
                                       std::vector<std::string> arguments)
    : comp(std::move(component)), mnem(std::move(mnemonic)), args(std::move(arguments)) {
  message = MessageCatalog::instance().format(identifier(), args);
  full = identifier();
  if (!message.empty()) full += ": " + message;
}

namespace detail {
std::string argumentText(std::u16string_view s) { return toUtf8(s); }
}  // namespace detail

}  // namespace bkmsg
