#include "printing/edition_layout.hpp"

namespace nimbara::printing {
namespace {

using S = Slice;

constexpr FormItem kArrayPayment[] = {Caption{8, 26, "a Pronto"}, Caption{28, 26, "Pré-Ativo"}, Caption{51, 26, "Crédito"},
                                     Caption{85.5, 26, "JPP Credenciado"}};
constexpr FormItem kDatabasePayment[] = {Caption{85.5, 26, "Conta Corrente "}};
constexpr FormItem kDatabasePaymentAfterDate[] = {
    Caption{8, 26, "a Pronto"}, Caption{28, 26, "Diferido"}, Caption{49, 26, "JPP Credenciados"}};

constexpr FormItem kArrayPagePanel[] = {
    Caption{190, 159, "Doc. Nº"},   Frame{228, 158, 28, 5, 0.1}, Caption{190, 167, "Nº de  Páginas"},
    Caption{190, 175, "Página Nº"}, Frame{228, 166, 28, 5, 0.1}, Frame{228, 174, 28, 5, 0.1},
    Frame{228, 182, 28, 5, 0.1},    Caption{190, 183, "Pedido / Compromisso"}};
constexpr FormItem kDatabasePagePanel[] = {
    Caption{210, 160, "Doc. Nº"},   Frame{234, 160, 17, 5, 0.1}, Caption{210, 180, "Nº de  Páginas"},
    Caption{210, 170, "Página Nº"}, Frame{234, 170, 17, 5, 0.1}, Frame{234, 180, 17, 5, 0.1}};
constexpr FormItem kDatabaseRequestCaption[] = {Font{"Times New Roman", 7, true},
                                               Caption{186.5, 16, "Nº de Requisição"}};

// x of the column strips ImgA onwards: the array edition has two more than the database one.
constexpr double kArrayStrips[] = {0,     15.6,  26,    49.5,  71.7,  83.9,  96.1,  108.3,
                                   120.5, 148.7, 170.2, 183.2, 195.5, 218.5, 230.5, 242.5};
constexpr double kDatabaseStrips[] = {0, 20.6, 38.6, 68.8, 102.7, 113.1, 123.3, 133.5, 143.5, 175.7, 208, 218, 227.3, 249.5};

constexpr double kPlaceholderContracts[] = {888888888, 777777777};

// The remarks' lines are fixed slices of the text, gaps and overlaps as the page has always had them.
constexpr S kArrayRemarks[] = {{1, 130}, {131, 130}, {262, 130}, {393, 130}, {524, 130}};
constexpr S kDatabaseRemarks[] = {{1, 70}, {71, 70}, {142, 70}, {213, 50}, {222, 50}};

constexpr PageFieldPlace kArrayPageFields[] = {{PageField::DocumentNumber, {230, 159}},
                                               {PageField::PageCount, {230, 167}},
                                               {PageField::PageNumber, {230, 175}},
                                               {PageField::Commitment, {230, 183}}};
constexpr PageFieldPlace kDatabasePageFields[] = {{PageField::DocumentNumber, {236, 160.7}},
                                                  {PageField::PageNumber, {236, 170.7}},
                                                  {PageField::PageCount, {236, 180.5}}};

const EditionLayout kArray{
    .headline = "OBJETOS POSTAIS",
    .third_payment_box_x = 45,
    .payment_captions = kArrayPayment,
    .payment_captions_after_date = {},
    .copy_mark = {150, 183},
    .version = {5, 183},
    .version_not_bold = true,
    .page_panel = kArrayPagePanel,
    .request_panel_caption = {},
    .row_combs = false,
    .strip_x = kArrayStrips,
    .hidden_contracts = kPlaceholderContracts,
    .remarks_line = 130,
    .remarks = std::span<const S, 5>(kArrayRemarks),
    .jpp_mark_x = 81.1,
    .payment_mark_x = {46, 3, 23},
    .page_fields = kArrayPageFields,
};

const EditionLayout kDatabase{
    .headline = "OBJECTOS POSTAIS",
    .third_payment_box_x = 42,
    .payment_captions = kDatabasePayment,
    .payment_captions_after_date = kDatabasePaymentAfterDate,
    .copy_mark = {150, 182},
    .version = {100, 182},
    .version_not_bold = false,
    .page_panel = kDatabasePagePanel,
    .request_panel_caption = kDatabaseRequestCaption,
    .row_combs = true,
    .strip_x = kDatabaseStrips,
    .hidden_contracts = {},
    .remarks_line = std::nullopt,
    .remarks = std::span<const S, 5>(kDatabaseRemarks),
    .jpp_mark_x = 42.9,
    .payment_mark_x = {std::nullopt, 3, 23},
    .page_fields = kDatabasePageFields,
};

}  // namespace

const EditionLayout& edition_layout(Edition edition) { return edition == Edition::Array ? kArray : kDatabase; }

}  // namespace nimbara::printing
