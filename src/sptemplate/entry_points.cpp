#include "quoFPAlg.h"

uint32_t FP_ExtractSpTemplates(const uint8_t* frame, uint32_t width, uint32_t height, uint8_t** sp_template,
                               uint32_t* size) {
  if (sp_template == nullptr) return QUO_OK;
  uint8_t* record = nullptr;
  // A size that does not fit a signed number becomes a negative one, which is refused.
  const uint32_t extracted =
      ExtractSpTemplates(frame, static_cast<int32_t>(width), static_cast<int32_t>(height), &record, nullptr);
  if (extracted != QUO_OK) return QUO_NO_MEMORY;
  const uint32_t encoded = EncodeSpTemplates(record, sp_template, size);
  tev_quo_free(record);
  return encoded;
}

void FP_DeleteSpTemplates(uint8_t** sp_template) {
  if (*sp_template == nullptr) return;
  tev_quo_free(*sp_template);
  *sp_template = nullptr;
}

uint32_t FP_MatchSpTemplates(const uint8_t* first, const uint8_t* second, uint32_t* score) {
  uint8_t* record_of_first = nullptr;
  if (DecodeSpTemplates(first, &record_of_first, nullptr) != QUO_OK) return QUO_TEMPLATE_MISFIT;
  uint8_t* record_of_second = nullptr;
  uint32_t result = QUO_TEMPLATE_MISFIT;
  if (DecodeSpTemplates(second, &record_of_second, nullptr) == QUO_OK) {
    if (MatchSpTemplates(record_of_first, record_of_second, score) == QUO_OK) result = QUO_OK;
    tev_quo_free(record_of_second);
  }
  tev_quo_free(record_of_first);
  return result;
}
