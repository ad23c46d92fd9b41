#include "CFilePreviewHandler.h"

CFilePreviewHandler::~CFilePreviewHandler() = default;
