#include <vq_client_common/authorizations/QCSGuiAuthActJobsDef.h>

QCSGuiAuthActJobsDef::QCSGuiAuthActJobsDef() = default;
QCSGuiAuthActJobsDef::QCSGuiAuthActJobsDef(const QCSGuiAuthActJobsDef&) = default;
QCSGuiAuthActJobsDef& QCSGuiAuthActJobsDef::operator=(const QCSGuiAuthActJobsDef&) = default;
QCSGuiAuthActJobsDef::~QCSGuiAuthActJobsDef() = default;
