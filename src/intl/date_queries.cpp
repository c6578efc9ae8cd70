// A locale's date conventions, read from the date record of its time cache,
// with the built-in conventions wherever no record applies.
#include "kescomn/intl_date.h"

#include <cstddef>

#include "errors/assert.h"
#include "intl/date_defaults.h"
#include "intl/locale_records.h"

namespace {

// The date record of locale, or of the context's locale when locale is null.
// A cache without a date record has not had its time data loaded yet; it
// counts as no locale, so the built-in conventions answer.
const CS_DATEINFO *date_info(const CS_CONTEXT *context, const CS_LOCALE *locale)
{
    if (locale == nullptr && context != nullptr)
        locale = context->ctxlocale;
    if (locale == nullptr)
        return nullptr;
    const auto *cache = static_cast<const CsLocCache *>(locale->timeptr);
    return cache != nullptr ? cache->locdateinfo : nullptr;
}

const CS_DATEINFO *date_info(const CS_CONTEXT *context, const CS_DATAFMT *dfmt)
{
    KES_NOT_NULL(dfmt);
    return date_info(context, dfmt->locale);
}

// The record keeps its names as bytes; the date code takes them as text.
template <std::size_t N>
CS_CHAR **as_text(CS_BYTE *const (&names)[N])
{
    return reinterpret_cast<CS_CHAR **>(const_cast<CS_BYTE **>(names));
}

} // namespace

extern "C" {

CS_CHAR **com_intl_months(CsContext *context, CS_DATAFMT *dfmt)
{
    const CS_DATEINFO *info = date_info(context, dfmt);
    return info != nullptr ? as_text(info->months) : com__get_months();
}

CS_CHAR **com_intl_shortmonths(CsContext *context, CS_DATAFMT *dfmt)
{
    const CS_DATEINFO *info = date_info(context, dfmt);
    return info != nullptr ? as_text(info->shortmonths) : com__get_shortmonths();
}

CS_CHAR **com_intl_days(CsContext *context, CS_DATAFMT *dfmt)
{
    const CS_DATEINFO *info = date_info(context, dfmt);
    return info != nullptr ? as_text(info->days) : com__get_days();
}

CS_INT com_intl_firstday(CsContext *context, CS_DATAFMT *dfmt)
{
    const CS_DATEINFO *info = date_info(context, dfmt);
    return info != nullptr ? info->firstday : com__get_firstday();
}

CS_CHAR *com_intl_dateorder(CsContext *context, CS_DATAFMT *dfmt)
{
    const CS_DATEINFO *info = date_info(context, dfmt);
    return info != nullptr ? const_cast<CS_CHAR *>(info->dateorder) : com__get_date_order();
}

int com_intl_dateorder_id(CsContext *context, CS_DATAFMT *dfmt)
{
    const CS_DATEINFO *info = date_info(context, dfmt);
    return info != nullptr ? info->locdateorder_id : com__get_date_order_id();
}

CS_BOOL com_intl_is12hour(CsContext *context, CS_DATAFMT *dfmt)
{
    const CS_DATEINFO *info = date_info(context, dfmt);
    return info != nullptr ? info->is12hour : 1;
}

CS_INT com_intl_convt_firstday(CS_INT orig_firstday, CS_INT orig_day, CS_INT dest_firstday)
{
    return ((orig_firstday - 1 + orig_day) % 7 + 8 - dest_firstday) % 7;
}

CS_INT comn_intl_get_dtfmt(CS_CONTEXT *context, CS_LOCALE *locale)
{
    const CS_DATEINFO *info = date_info(context, locale);
    return info != nullptr ? info->convertfmt : com__map_dateorder_id_to_fmt(com__get_date_order_id());
}

CS_INT comn_dtloc_format(CS_CONTEXT *context, CS_LOCALE *locale)
{
    const CS_DATEINFO *info = date_info(context, locale);
    return info != nullptr ? info->locdateorder_id : com__get_date_order_id();
}

CS_INT comn_dtloc_format_fmt(CS_CONTEXT *context, CS_LOCALE *locale)
{
    // Without a locale this answers with the built-in order id, as its twin
    // does, and not with the style that order maps to.
    const CS_DATEINFO *info = date_info(context, locale);
    return info != nullptr ? info->convertfmt : com__get_date_order_id();
}

CS_INT comn_get_datetochar_fmt(CS_CONTEXT *context, CS_DATAFMT *fmt)
{
    KES_NOT_NULL(fmt);
    const CS_INT style = comn_intl_get_dtfmt(context, fmt->locale);
    const bool known = (style >= 1 && style <= 23) || (style >= 36 && style <= 40) ||
                       (style >= 100 && style <= 118) || style == 121 || style == 122 ||
                       (style >= 136 && style <= 140);
    return known ? style : 0;
}

} // extern "C"
