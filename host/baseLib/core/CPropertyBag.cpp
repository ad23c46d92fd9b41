#include "CPropertyBag.h"

CPropertyBag::~CPropertyBag() = default;
