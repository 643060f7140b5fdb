#pragma once
// The twelve print and barcode settings of a headless Guia, taken from the parameter table that the
// façade was filled with. No database: a new object holds empty texts until PreencheObjecto.
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "nimbara/guia_arrays.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

// A parameter check that failed: the application error number and the message for the user.
class NIMBARA_API ParametroError : public std::runtime_error {
public:
    static constexpr std::int32_t kNumber = static_cast<std::int32_t>(0x80040201u);
    explicit ParametroError(const std::string& description) : std::runtime_error(description) {}
    std::int32_t number() const { return kNumber; }
};

// Why printing cannot use a setting as it stands, in words after its value ("is not a whole number
// from 0 to 30"), or nothing when it prints. Printing reads the twelve settings by these rules, and
// a setting saved is judged by them too, so that what was accepted also prints. Margins are whole
// twips (567 to 10 millimetres).
NIMBARA_API std::optional<std::string> print_setting_problem(param::Field setting, std::string_view value);

class cls_ParametroA;

// The factory settings of a new database: 16 data columns and rows as the data need, error level 2,
// mode 0, rows three modules high at font size 3 (0.25 mm modules), not truncated, no tilde
// processing; one copy; margins that keep the form clear of the 5 mm border office printers cannot
// print at the top and the left of the sheet.
NIMBARA_API cls_ParametroA factory_print_settings();

class NIMBARA_API cls_ParametroA {
public:
    std::string VCod2DFonteSize;
    std::string vCod2DRatio;
    std::string vCod2DNColunas;
    std::string vCod2DNLinhas;
    std::string vCod2DErroLevel;
    std::string vCod2DPDFMode;
    std::string vCod2DTruncated;
    std::string vCod2DApplyTilde;
    std::string vGuiaNVias;
    std::string vGuiaMargensTopo;
    std::string vGuiaMargensEsquerda;
    std::string vCodTerceiro;

    // Takes the first row of the table (an empty cell becomes the empty text); a table never filled
    // gives the defaults. Nothing is checked here.
    void PreencheObjecto(const param::Table& arrParametros);

    // The copy count at least 1, at most 32 columns, an error level of 1 to 8, in that order; the
    // first that fails throws ParametroError, and a value that is no number throws
    // std::invalid_argument. Nothing in the headless road calls it.
    bool Validate() const;

    // There is no table behind this class: both do nothing.
    void SelectAll() const {}
    void DoSave() const {}
};

}  // namespace nimbara
