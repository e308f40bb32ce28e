#include "CTestInstructionDescItem.h"

namespace KvOrdo
{

CTestInstructionDescItem::~CTestInstructionDescItem() = default;

} // namespace KvOrdo
