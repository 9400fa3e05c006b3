#include "binding/Tm_backed_array.h"

// The twenty backed-array classes: a referring and a copying form for each element row.
#define TM_BACKED_ARRAY_ROW(T)                                      \
    template class Tm_backed_array<std::vector<T>::const_iterator>; \
    template class Tm_copy_backed_array<T, std::vector<T>::const_iterator>;
TM_BACKED_ARRAY_ROW(signed char)
TM_BACKED_ARRAY_ROW(unsigned char)
TM_BACKED_ARRAY_ROW(short)
TM_BACKED_ARRAY_ROW(unsigned short)
TM_BACKED_ARRAY_ROW(int)
TM_BACKED_ARRAY_ROW(unsigned int)
TM_BACKED_ARRAY_ROW(long)
TM_BACKED_ARRAY_ROW(unsigned long)
TM_BACKED_ARRAY_ROW(bool)
#undef TM_BACKED_ARRAY_ROW
template class Tm_backed_array<const unsigned char*>;
template class Tm_copy_backed_array<unsigned char, const unsigned char*>;
