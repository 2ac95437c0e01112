# Each public header stands alone, in C and in C++, and all stand together. No other include
# directory is given, so that none of them needs more than a C library.
flags=(-Wall -Wextra -Wpedantic -Werror -fsyntax-only "-I$SOURCE/include")

compile() {
  "$CC" -std=c11 "${flags[@]}" -x c - <<<"$1" || fail "not valid C11: $1"
  "$CXX" -std=c++20 "${flags[@]}" -x c++ - <<<"$1" || fail "not valid C++20: $1"
}

not_empty='extern int not_empty;'
all=''
for header in "$SOURCE"/include/orv/*.h; do
  line="#include <orv/${header##*/}>"$'\n'
  compile "$line$line$not_empty"
  all+=$line
done
compile "$all$not_empty"
# That of C++ takes an older language than ours.
"$CXX" -std=c++17 "${flags[@]}" -x c++ - <<<$'#include <orv/client.hpp>\n#include <orv/protocol.h>' ||
  fail 'client.hpp is not valid C++17'
for header in client.h client.hpp; do
  expect "headers of this project in $header" "${others:-}" \
    "$(sed -n 's/^#include <orv\/\(.*\)>$/\1/p' "$SOURCE/include/orv/$header")"
  others=client.h
done
