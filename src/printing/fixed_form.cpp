// The fixed form of a Guia page: frames, captions, shaded panels, the column strips and the twelve
// empty rows, drawn in an order that lets the variable parts fit into the cells afterwards.
#include <initializer_list>
#include <span>

#include <variant>

#include "nimbara/ImpressaoComum.hpp"
#include "nimbara/version.hpp"
#include "printing/edition_layout.hpp"
#include "printing/page.hpp"

namespace nimbara {
namespace {

// A comb of the top-right panel: its ticks as x, top and height, and the rule under them.
struct TopComb {
    struct Tick {
        double x, y, h;
    };
    std::initializer_list<Tick> ticks;
    double rule_x, rule_w;
};
const TopComb kTopRightCombs[] = {
    {{{186.5, 24.7, 5}, {190, 26.6, 3}, {194, 26.6, 3}, {198, 26.6, 3.1}, {202, 26.6, 3.1}, {206, 26.6, 3.1},
      {210, 26.6, 3.1}, {214.5, 24.7, 5.1}},
     186.5, 28.2},
    {{{216, 25.1, 5}, {220, 27.1, 3}, {224, 25.1, 5}}, 216, 8},
    {{{225.5, 25.1, 5}, {229.5, 27.1, 3}, {233.5, 25.1, 5}}, 225.5, 8},
    {{{234.7, 25.1, 5}, {238, 27.1, 3}, {242, 27.1, 3}, {246, 25.1, 5}, {250, 27.1, 3}, {254, 27.1, 3}, {257.8, 25.1, 5}},
     234.7, 23.2},
};

// The character cells of one table row where the edition draws them: long ticks from the row's y
// with height 4, short ones from y + 1 with height 3, and the rule at y + 4.
struct RowComb {
    std::initializer_list<std::pair<double, bool>> ticks;  // x, long
    std::initializer_list<std::pair<double, double>> rules;  // from x, width
};
const RowComb kRowCombs[] = {
    {{{12, true}, {16, false}, {20, true}}, {{12, 8.1}}},
    {{{26.1, true}, {30, false}, {34, false}, {38, true}}, {{26.1, 12.1}}},
    {{{43.7, true}, {47.7, false}, {51.7, false}, {55.7, true}, {59.7, false}, {64, false}, {68, true}}, {{43.7, 24.1}}},
    {{{74.4, true}, {78.4, false}, {82.4, false}, {86.4, false}, {90.4, true}, {94.4, false}, {98.4, false}, {102.4, true}},
     {{74.4, 28.1}}},
    {{{108.5, true}, {112.5, true}}, {{108.5, 3.8}}},
    {{{118.5, true}, {122.5, true}}, {{118.6, 3.9}}},
    {{{129, true}, {132.5, true}}, {{129, 3.5}}},
    {{{139, true}, {142.7, true}}, {{139, 3.7}}},
    {{{149, true}, {153, false}, {157, true}, {158, true}, {162, false}, {166, true}, {167, true}, {171, false}, {175, true}},
     {{149, 8.1}, {158, 8.1}, {167, 8.1}}},
};
// Comb 12, the amount, carries the decimal comma between its sixth and seventh ticks.
constexpr std::pair<double, bool> kAmountTicksBeforeComma[] = {{181.1, true}, {185, false}, {188.9, false}, {192.9, true},
                                                               {196.3, false}, {199.9, false}};
constexpr std::pair<double, bool> kAmountTicksAfterComma[] = {{203.9, false}, {207.9, true}};
const RowComb kRowCombsAfterAmount[] = {
    {{{214, true}, {217.5, true}}, {{214, 3.5}}},
    {{{223.4, true}, {226.8, true}}, {{223.4, 3.5}}},
    {{{232.5, true}, {236.5, false}, {240.5, false}, {244.5, false}, {248.5, true}}, {{232.5, 16}}},
    {{{255, true}, {258.5, true}}, {{255, 3.5}}},
};

void drawTopRightCombs(const printing::Page& page, PageSurface& s)
{
    for (const auto& comb : kTopRightCombs) {
        for (const auto& t : comb.ticks) page.frame(s, t.x, t.y, 0, t.h, 0.1);
        page.frame(s, comb.rule_x, 30.1, comb.rule_w, 0, 0.1);
    }
}

void drawRowCombs(const printing::Page& page, PageSurface& s, double y)
{
    const auto tick = [&](std::pair<double, bool> t) {
        if (t.second)
            page.frame(s, t.first, y, 0, 4, 0.1);
        else
            page.frame(s, t.first, y + 1, 0, 3, 0.1);
    };
    const auto comb = [&](const RowComb& c) {
        for (const auto& t : c.ticks) tick(t);
        for (const auto& [x, w] : c.rules) page.frame(s, x, y + 4, w, 0, 0.1);
    };
    for (const auto& c : kRowCombs) comb(c);
    for (const auto& t : kAmountTicksBeforeComma) tick(t);
    page.setFont(s, "Times New Roman", 8);
    s.setDrawMode(printer::kDrawMaskPen);
    s.setFillStyle(printer::kFillSolid);
    page.printAt(s, 199.5, y + 2.1, ",");
    s.setDrawMode(printer::kDrawCopyPen);
    s.setFillStyle(printer::kFillSolid);
    page.setFont(s, "Times New Roman", 7);
    for (const auto& t : kAmountTicksAfterComma) tick(t);
    page.frame(s, 181.1, y + 4, 27.1, 0, 0.1);
    for (const auto& c : kRowCombsAfterAmount) comb(c);
}

}  // namespace

void ImpressaoComum::PrintaParteFixaGuiaExp(PageSurface& impressora, const FormImpressao& imagens,
                                            std::int32_t DplOriginal, const std::string& dtRequisicao)
{
    const printing::Page page(*this);
    page.guarded("PrintaParteFixaGuiaExp", [&] {
        auto& s = impressora;
        const printing::EditionLayout& layout = printing::edition_layout(edition_);
        const auto text = [&](double x, double y, std::string_view t) { page.printAt(s, x, y, t); };
        const auto draw = [&](std::span<const printing::FormItem> items) {
            for (const auto& item : items) {
                if (const auto* c = std::get_if<printing::Caption>(&item)) {
                    text(c->x, c->y, c->text);
                } else if (const auto* f = std::get_if<printing::Frame>(&item)) {
                    page.frame(s, f->x, f->y, f->w, f->h, f->e);
                } else {
                    const auto& font = std::get<printing::Font>(item);
                    page.setFont(s, font.name, font.size, font.bold);
                }
            }
        };
        const auto grey_panel = [&](double x, double y, double w, double h) {
            s.setFillColor(kPanelGrey);
            s.setFillStyle(printer::kFillSolid);
            printaCaixaFilled(w, h, x + page.LeftX(), y + page.TopY(), s);
        };

        s.setScaleMode(printer::kScaleTwips);
        s.setFillColor(kBlack);
        s.setFillStyle(printer::kFillSolid);
        page.setFont(s, "Times New Roman", 7, false);

        // The identification row under the header frame.
        text(1, 32.5, "Código de Terceiro");
        text(31, 32.5, "Nº Cliente");
        text(60, 32.5, "Nº Contrato");
        text(89, 32.5, "Credencial Porte Pago");
        text(124, 32.5, "Nome do Cliente Expedidor");
        text(228, 32.5, "Nº Fiscal");
        page.frame(s, 1, 36, 25, 5, 0.1);
        page.frame(s, 31, 36, 23, 5, 0.1);
        page.frame(s, 59, 36, 25, 5, 0.1);
        page.frame(s, 89, 36, 33, 5, 0.1);
        page.frame(s, 124, 36, 100, 5, 0.1);
        page.frame(s, 228, 36, 34, 5, 0.1);

        page.setFont(s, "Arial", 8, true);
        text(5, 152, "Observações");
        page.frame(s, 5, 156, 165, 26, 0.35);
        page.setFont(s, "Times New Roman", 7, true);
        text(143, 127, "Aceite - Conferido");
        s.PaintPicture(imagens.pic_circuloAceiteConferido, page.twipsX(142.5), page.twipsY(131));

        // The header frame with the headline, the payment boxes and the request date.
        page.frame(s, 0, 0, 262, 32.1, 0.35);
        page.frame(s, 1, 20, 80, 0, 0.2);
        page.setFont(s, "Arial", 11, true);
        text(40, 6.5, layout.headline);
        page.setFont(s, "Arial", 8, true);
        text(2, 21.1, "Pagamento");
        page.setFont(s, "Arial", 10, true);
        text(40, 11.5, "Guia Nimbara ");
        page.frame(s, 2, 26, 4, 4, 0.1);
        page.frame(s, 22, 26, 4, 4, 0.1);
        page.frame(s, layout.third_payment_box_x, 26, 4, 4, 0.1);
        page.frame(s, 80, 26, 4, 4, 0.1);
        page.frame(s, 115, 26, 26, 4, 0.1);
        page.setFont(s, "Arial", 8, true);
        draw(layout.payment_captions);
        text(112.6, 17.5, "Data da Requisição");
        text(115.6, 21, "Ano - Mês - Dia");
        text(119, 26.2, dtRequisicao);
        draw(layout.payment_captions_after_date);

        // The footer: sender's address, acceptance, amount charged, numbers of the document.
        grey_panel(190.1, 118.1, 70.8, 27.8);
        page.frame(s, 5, 121, 120, 28, 0);
        page.setFont(s, "Arial", 7, true);
        text(7, 121.5, "(Endereço do Remetente)");
        text(7, 145, "(Rubrica do Entregador)");
        page.frame(s, 7, 128.5, 100, 0, 0);
        page.frame(s, 7, 133.5, 100, 0, 0);
        page.frame(s, 7, 142, 100, 0, 0);
        page.frame(s, 192, 123, 67, 0, 0);
        page.frame(s, 192, 130, 67, 0, 0);
        page.frame(s, 192, 137, 67, 0, 0);
        const std::string copy_mark = DplOriginal == 0 ? "Original" : "Duplicado " + std::to_string(DplOriginal);
        const std::string version = "Versão " + std::to_string(kVersionMajor) + "." + std::to_string(kVersionMinor) +
                                    "." + std::to_string(kVersionRevision);
        text(layout.copy_mark.x, layout.copy_mark.y, copy_mark);
        if (layout.version_not_bold) s.setFontBold(false);
        text(layout.version.x, layout.version.y, version);
        s.PaintPicture(imagens.pict_cobrado, page.twipsX(198.5), page.twipsY(141.5));
        s.PaintPicture(imagens.pic_euro, page.twipsX(212.5), page.twipsY(140));
        s.setForeColor(kBlack);
        s.setFillStyle(printer::kFillHorizontalLine);
        text(195, 114.5, "Observações");
        text(193.5, 151.5, "Por");
        s.PaintPicture(imagens.pict_ponto, page.twipsX(228.5), page.twipsY(138));
        s.PaintPicture(imagens.pict_virgula, page.twipsX(247.5), page.twipsY(138));
        for (double x : {216.5, 222.5, 230.0, 236.0, 242.0, 249.0, 255.0}) page.frame(s, x, 138, 5, 6.5, 0.1);
        page.frame(s, 184, 156, 77, 0, 0);
        page.setFont(s, "Arial", 9);
        draw(layout.page_panel);

        // The top-right panel with the request number's combs.
        grey_panel(185.1, 19.1, 73.8, 11.8);
        drawTopRightCombs(page, s);
        draw(layout.request_panel_caption);
        s.PaintPicture(imagens.pict_ec_aceitante, page.twipsX(186.5), page.twipsY(20));
        for (double x : {216.0, 225.5, 234.7}) {
            s.setCurrentX(page.twipsX(x));
            s.setCurrentY(page.twipsY(21));
        }

        // The twelve rows of the table.
        s.setFillColor(kBlack);
        for (int row = 0, y = 43; row < 12; ++row, y += 6) {
            page.setFont(s, "Times New Roman", 7, true);
            s.setFillColor(kBlack);
            s.setCurrentX(page.twipsX(8));
            s.setCurrentY(page.twipsY(2));
            if (layout.row_combs)
                drawRowCombs(page, s, y);
            else
                page.frame(s, 10, y + 4, 255, 0, 0.1);
        }

        // Last, so that they lie over the rows' rules.
        s.PaintPicture(imagens.Pic_barra_ProcessadoComp, page.twipsX(0), page.twipsY(126.5));
        const auto strips = imagens.strips();
        for (std::size_t i = 0; i < layout.strip_x.size(); ++i)
            s.PaintPicture(*strips[i], page.twipsX(layout.strip_x[i]), page.twipsY(41.5));
    });
}

}  // namespace nimbara
