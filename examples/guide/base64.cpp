// Base64 of bytes, in lines of 8 characters, and back.
#include <iostream>
#include <string>

#include "persistence/cls_base64.h"

int main() {
  using namespace brix;
  auto codec = clsBase64::Create();
  const std::string text = "hello world";
  ByteArray bytes(text.begin(), text.end()), encoded, spanned, back;

  codec->EncodeB64(bytes, encoded);
  codec->Span(8, encoded, spanned);  // lines ending in CR LF
  std::string shown(spanned.begin(), spanned.end());
  for (std::size_t at; (at = shown.find("\r\n")) != std::string::npos;) shown.replace(at, 2, "|");
  std::cout << std::string(encoded.begin(), encoded.end()) << "\n" << shown << "\n";

  codec->Unspan(spanned, back);
  codec->DecodeB64(back, back);
  std::cout << std::string(back.begin(), back.end()) << "\n";
}
