/* The C interface of the component: opaque handles, status codes and UTF-8 texts with explicit
 * lengths, so that a host in any language that can call C loads the component without a shim.
 *
 * Rules that hold for every function:
 * - Every function but the few that say otherwise answers a nimbara_status. On anything but
 *   NIMBARA_OK, nimbara_last_error() holds the cause (per thread, until the next failing call).
 * - Texts going in are (pointer, length) pairs of UTF-8; a NULL pointer with length 0 is the empty
 *   text. Texts and byte buffers coming out are allocated by the library and released with
 *   nimbara_free(); texts read from a handle (an outcome, a listing) belong to that handle.
 * - Each handle is released by its own destroy function; destroy accepts NULL.
 * - Structs handed in start with their size (struct_size), so that later versions can add fields.
 * - No call waits for a user; messages, the hourglass and progress go to the notifier.
 */
#ifndef NIMBARA_H
#define NIMBARA_H

#include <stddef.h>
#include <stdint.h>

#if defined(NIMBARA_C_BUILDING)
#define NIMBARA_C_API __attribute__((visibility("default")))
#else
#define NIMBARA_C_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The version of this interface: raised on every incompatible change, as is the library's SONAME. */
#define NIMBARA_ABI_VERSION 1

typedef enum nimbara_status {
    NIMBARA_OK = 0,
    NIMBARA_FAILED_VALIDATION = 1, /* the line or the Guia was judged and did not pass */
    NIMBARA_BAD_ARGUMENT = 2,      /* a NULL handle, a malformed text, an unknown name or version */
    NIMBARA_NOT_FOUND = 3,         /* no stored Guia of that number, no such file */
    NIMBARA_IO = 4,                /* a file or folder could not be read or written */
    NIMBARA_DATABASE = 5,          /* the store refused or could not be reached */
    NIMBARA_INTERNAL = 6,          /* anything else; the cause says what */
    NIMBARA_CANCELLED = 7          /* the host's cancel flag stopped the call; nothing was changed */
} nimbara_status;

/* The library's version ("5.3.15"), and the interface version it was built with. */
NIMBARA_C_API const char* nimbara_version(void);
NIMBARA_C_API int nimbara_abi_version(void);

/* Why the last failing call on this thread failed: NUL-terminated UTF-8, never NULL (the empty text
 * before any failure). Valid until the next failing call on this thread. */
NIMBARA_C_API const char* nimbara_last_error(void);

/* Releases what the library allocated for the caller; NULL is ignored. */
NIMBARA_C_API void nimbara_free(void* pointer);

/* ---- Notifier -------------------------------------------------------------------------------- */

typedef enum nimbara_message_icon {
    NIMBARA_ICON_NONE = 0,
    NIMBARA_ICON_CRITICAL = 1,
    NIMBARA_ICON_QUESTION = 2,
    NIMBARA_ICON_EXCLAMATION = 3,
    NIMBARA_ICON_INFORMATION = 4
} nimbara_message_icon;

/* What message boxes, the hourglass and progress bars would have shown. Any callback may be NULL.
 * Callbacks run on the thread of the call that notifies and must not call back into the library. */
typedef struct nimbara_notifier {
    size_t struct_size;
    void (*message)(void* user, nimbara_message_icon icon, const char* title, size_t title_size,
                    const char* text, size_t text_size);
    void (*busy)(void* user, int on);
    void (*progress)(void* user, int value);
    void* user;
} nimbara_notifier;

/* Makes `notifier` (copied) the process's notifier; NULL goes back to the default, which writes
 * messages to standard error. */
NIMBARA_C_API nimbara_status nimbara_set_notifier(const nimbara_notifier* notifier);

/* ---- Results ----------------------------------------------------------------------------------- */

/* The outcome of validating a Guia: the errors of its lines (with the values that would have been
 * accepted) and the error of a rule of the whole Guia. */
typedef struct nimbara_outcome nimbara_outcome;

typedef struct nimbara_error_info {
    size_t struct_size;
    int32_t row;             /* the line's place in filling order from 0; -1 for the whole Guia */
    const char* line;        /* the line's N_Linha */
    size_t line_size;
    int32_t number;          /* the error number (negative) */
    const char* description; /* the description; a list of service codes is joined with "," */
    size_t description_size;
    int is_list;             /* the description is a list of the failing service codes */
    int ranges;              /* the possible values are (minimum, maximum) pairs of weight */
    size_t possible_count;   /* entries for nimbara_outcome_possible */
    const char* sentence;    /* what the services need, when the report says it in words */
    size_t sentence_size;
} nimbara_error_info;

NIMBARA_C_API void nimbara_outcome_destroy(nimbara_outcome* outcome);
/* Whether the Guia passed: no line and no rule of the whole Guia failed. */
NIMBARA_C_API int nimbara_outcome_passed(const nimbara_outcome* outcome);
NIMBARA_C_API size_t nimbara_outcome_error_count(const nimbara_outcome* outcome);
/* Fills `info` (its struct_size set by the caller) for error `index`; its texts belong to the outcome. */
NIMBARA_C_API nimbara_status nimbara_outcome_error(const nimbara_outcome* outcome, size_t index,
                                                   nimbara_error_info* info);
/* A possible value of error `index`: a code and its designation, or a minimum and a maximum. */
NIMBARA_C_API nimbara_status nimbara_outcome_possible(const nimbara_outcome* outcome, size_t index, size_t value,
                                                      const char** code, size_t* code_size, const char** label,
                                                      size_t* label_size);

/* A list of files written or documents made by a print run, in order. */
typedef struct nimbara_print_job nimbara_print_job;

NIMBARA_C_API void nimbara_print_job_destroy(nimbara_print_job* job);
NIMBARA_C_API size_t nimbara_print_job_count(const nimbara_print_job* job);
/* Item `index`: the PDF's bytes for a print to memory, the file's path for a print to files. */
NIMBARA_C_API nimbara_status nimbara_print_job_item(const nimbara_print_job* job, size_t index, const char** data,
                                                    size_t* size);

/* ---- The Guia file ------------------------------------------------------------------------------ */

/* A Guia as its file holds it: header, parameters, product lines and special services by name. */
typedef struct nimbara_guia nimbara_guia;

NIMBARA_C_API nimbara_status nimbara_guia_create(nimbara_guia** guia);
NIMBARA_C_API void nimbara_guia_destroy(nimbara_guia* guia);
/* Reads a Guia file (JSON); a malformed file is NIMBARA_BAD_ARGUMENT naming the place. */
NIMBARA_C_API nimbara_status nimbara_guia_from_file(const char* path, size_t path_size, nimbara_guia** guia);
NIMBARA_C_API nimbara_status nimbara_guia_from_json(const char* json, size_t json_size, nimbara_guia** guia);
/* The Guia as the text of a Guia file; release with nimbara_free. */
NIMBARA_C_API nimbara_status nimbara_guia_to_json(const nimbara_guia* guia, char** json, size_t* json_size);

typedef enum nimbara_section {
    NIMBARA_CABECALHO = 0, /* the header: one, fields set again overwrite */
    NIMBARA_PARAMETROS = 1, /* the print and barcode parameters: one */
    NIMBARA_PRODUTO = 2,   /* a product line: each call adds one */
    NIMBARA_SERVICO = 3    /* a special service of a line: each call adds one */
} nimbara_section;

/* A field by its argument name ("cb_CodCliente", "B_Produto", ...) and its value. */
typedef struct nimbara_field {
    const char* name;
    size_t name_size;
    const char* value;
    size_t value_size;
} nimbara_field;

/* Sets fields of the header or the parameters, or adds a product line or a service with the fields
 * given (the rest empty). An unknown name is refused and changes nothing. */
NIMBARA_C_API nimbara_status nimbara_guia_fill(nimbara_guia* guia, nimbara_section section, const nimbara_field* fields,
                                               size_t count);

/* ---- The headless road: the façade --------------------------------------------------------------- */

/* The façade (cls_ValProdutosA): a Guia poured in, validated and printed against the compiled-in
 * rules. One handle is used by one thread at a time; line checks may share one handle between threads. */
typedef struct nimbara_validator nimbara_validator;

NIMBARA_C_API nimbara_status nimbara_validator_create(nimbara_validator** validator);
NIMBARA_C_API void nimbara_validator_destroy(nimbara_validator* validator);

/* The ten arguments of DoValidaProduto. */
typedef struct nimbara_line {
    size_t struct_size;
    const char* produto; size_t produto_size;
    const char* zona; size_t zona_size;
    int32_t peso;
    const char* velocidade; size_t velocidade_size;
    const char* formato; size_t formato_size;
    const char* pre_tratamento; size_t pre_tratamento_size;
    const char* desconto; size_t desconto_size;
    const char* ambito; size_t ambito_size;
    const char* amostra; size_t amostra_size;
    const char* servicos; size_t servicos_size; /* the service codes joined with "," */
} nimbara_line;

/* Judges one line: NIMBARA_OK when it passes, NIMBARA_FAILED_VALIDATION with the error's number and,
 * when `description` is not NULL, its text (release with nimbara_free). */
NIMBARA_C_API nimbara_status nimbara_check_line(const nimbara_validator* validator, const nimbara_line* line,
                                                int32_t* number, char** description, size_t* description_size);

/* Judges a batch as check-lines does, in one call: the ten fields tab-separated, one line per line;
 * one result line per line ("0", or the number, a tab and the description; "!" and the reason for a
 * line that could not be judged). `refused` (may be NULL) counts those. Release `results` with
 * nimbara_free. */
NIMBARA_C_API nimbara_status nimbara_check_lines(const nimbara_validator* validator, const char* tsv, size_t tsv_size,
                                                 char** results, size_t* results_size, size_t* refused);

/* Pours a Guia into the façade in file order (PreencheCabecalho, PreencheParametros, PreencheProduto,
 * PreencheServico); a fill that answers -1 is NIMBARA_BAD_ARGUMENT naming its place. */
NIMBARA_C_API nimbara_status nimbara_validator_fill(nimbara_validator* validator, const nimbara_guia* guia);
/* One fill operation by named fields, as nimbara_guia_fill names them. */
NIMBARA_C_API nimbara_status nimbara_validator_fill_fields(nimbara_validator* validator, nimbara_section section,
                                                           const nimbara_field* fields, size_t count);

/* Every line, then (when none failed) the whole Guia, with what would have been accepted; writes no
 * report. NIMBARA_OK or NIMBARA_FAILED_VALIDATION, with the outcome either way. */
NIMBARA_C_API nimbara_status nimbara_validator_validate(const nimbara_validator* validator, nimbara_outcome** outcome);

/* Where ImprimeGuia writes reports and PDFs, and the print log (by default the working folder and
 * the user's state folder). An empty text goes back to the default. */
NIMBARA_C_API nimbara_status nimbara_validator_set_report_folder(nimbara_validator* validator, const char* folder,
                                                                 size_t folder_size);
NIMBARA_C_API nimbara_status nimbara_validator_set_print_folder(nimbara_validator* validator, const char* folder,
                                                                size_t folder_size);
NIMBARA_C_API nimbara_status nimbara_validator_set_print_log(nimbara_validator* validator, const char* path,
                                                             size_t path_size);

/* ImprimeGuia: validates, writes the report, prints when all passed, and answers its XML text
 * (release with nimbara_free). As ever, the held Guia is emptied after a print run. */
NIMBARA_C_API nimbara_status nimbara_validator_imprime_guia(nimbara_validator* validator, int only_printer,
                                                            char** answer, size_t* answer_size);

/* Prints the held Guia without validating it, one PDF per copy, and keeps the Guia held. To memory,
 * the job's items are the PDFs' bytes; to a folder, the paths of the files written there. A copy that
 * cannot be printed whole is NIMBARA_IO and leaves no file. */
NIMBARA_C_API nimbara_status nimbara_validator_print_memory(const nimbara_validator* validator, nimbara_print_job** job);
NIMBARA_C_API nimbara_status nimbara_validator_print_files(const nimbara_validator* validator, const char* folder,
                                                           size_t folder_size, nimbara_print_job** job);

/* ---- The database road -------------------------------------------------------------------------- */

/* A connection to a store: "sqlite:PATH", the old "Provider=...;Data Source = PATH", or
 * "postgresql://..." / "postgresql:key=value ...". */
typedef struct nimbara_store nimbara_store;

typedef enum nimbara_open_mode {
    NIMBARA_OPEN_EXISTING = 0, /* a database of this program, or refused */
    NIMBARA_OPEN_CREATE = 1    /* an SQLite file is made when missing, and an empty store gets the tables */
} nimbara_open_mode;

NIMBARA_C_API nimbara_status nimbara_store_open(const char* conn, size_t conn_size, nimbara_open_mode mode,
                                                nimbara_store** store);
NIMBARA_C_API void nimbara_store_destroy(nimbara_store* store);

/* Stores the Guia as a new Guia (its client and contract must exist) and answers its numbers. */
NIMBARA_C_API nimbara_status nimbara_store_save(nimbara_store* store, const nimbara_guia* guia, int32_t* n_req,
                                                int32_t* n_req2, int32_t* id_req_anual);
/* The stored Guia `n_req` as a Guia file; NIMBARA_NOT_FOUND when there is none. */
NIMBARA_C_API nimbara_status nimbara_store_load(nimbara_store* store, int32_t n_req, nimbara_guia** guia);

/* The stored Guias' lines under filters (NULL or empty for none) in an order of column words
 * ("guia, data desc"); an unknown order word is NIMBARA_BAD_ARGUMENT. */
typedef struct nimbara_list_filter {
    size_t struct_size;
    const char* year; size_t year_size;
    const char* month; size_t month_size;
    const char* client; size_t client_size;
    const char* order; size_t order_size;
} nimbara_list_filter;

typedef struct nimbara_listing nimbara_listing;

NIMBARA_C_API nimbara_status nimbara_store_list(nimbara_store* store, const nimbara_list_filter* filter,
                                                nimbara_listing** listing);
NIMBARA_C_API void nimbara_listing_destroy(nimbara_listing* listing);
NIMBARA_C_API size_t nimbara_listing_column_count(const nimbara_listing* listing);
NIMBARA_C_API size_t nimbara_listing_row_count(const nimbara_listing* listing);
/* A column's name, and a cell as text; NULL cells are the empty text with *is_null set (may be NULL). */
NIMBARA_C_API nimbara_status nimbara_listing_column(const nimbara_listing* listing, size_t column, const char** name,
                                                    size_t* name_size);
NIMBARA_C_API nimbara_status nimbara_listing_cell(const nimbara_listing* listing, size_t row, size_t column,
                                                  const char** text, size_t* text_size, int* is_null);

/* Judges the stored Guia `n_req` against the database's rule tables (the database validator): each
 * line, then the Guia. NIMBARA_OK or NIMBARA_FAILED_VALIDATION, with the outcome either way. */
NIMBARA_C_API nimbara_status nimbara_store_check(nimbara_store* store, int32_t n_req, nimbara_outcome** outcome);

/* Prints the stored Guia `n_req` (read back as its Guia file, by the headless edition): to memory when
 * `folder` is NULL, else into that folder. */
NIMBARA_C_API nimbara_status nimbara_store_print(nimbara_store* store, int32_t n_req, const char* folder,
                                                 size_t folder_size, nimbara_print_job** job);

/* A client with its contracts, by the names of their properties: vCod_Cliente, vNome, iTipoCliente,
 * vMorada, vLocalidade, vCodPostal, vDesigPostal, vNIF, vObservacoes, iAcessoRede; a contract's
 * vCodContrato, vDesignacao, vJppCredenciado, vCodCredencial, vValidacao, vDescricao, bActivo. Numbers
 * are written in digits, yes/no as "true" or "false". */
typedef struct nimbara_client nimbara_client;

NIMBARA_C_API nimbara_status nimbara_client_create(nimbara_client** client);
NIMBARA_C_API void nimbara_client_destroy(nimbara_client* client);
/* Sets the client's properties; an unknown name or a value of the wrong kind changes nothing. */
NIMBARA_C_API nimbara_status nimbara_client_set(nimbara_client* client, const nimbara_field* fields, size_t count);
/* Adds a contract with the properties given (the rest their defaults). */
NIMBARA_C_API nimbara_status nimbara_client_add_contract(nimbara_client* client, const nimbara_field* fields,
                                                         size_t count);
NIMBARA_C_API size_t nimbara_client_contract_count(const nimbara_client* client);
/* A property as text, of the client itself (contract NIMBARA_THE_CLIENT) or of contract `contract`;
 * the text is the handle's until its next call of nimbara_client_get. */
#define NIMBARA_THE_CLIENT ((size_t)-1)
NIMBARA_C_API nimbara_status nimbara_client_get(nimbara_client* client, size_t contract, const char* name,
                                                size_t name_size, const char** text, size_t* text_size);

/* Creates the client of its number or updates the stored one (its contracts updated or added), all in
 * one transaction, and answers its Id_Cliente (may be NULL). */
NIMBARA_C_API nimbara_status nimbara_store_save_client(nimbara_store* store, const nimbara_client* client,
                                                       int32_t* id_cliente);
/* The stored client of that number; NIMBARA_NOT_FOUND when there is none. */
NIMBARA_C_API nimbara_status nimbara_store_load_client(nimbara_store* store, int32_t cod_cliente,
                                                       nimbara_client** client);

/* Replacing the clients, contracts and Guias with those of an old database file. */
typedef struct nimbara_import_options {
    size_t struct_size;
    /* Called with 0 to 100 as the import goes; may be NULL. */
    void (*progress)(void* user, int value);
    void* user;
    /* When not NULL and set to non-zero (from any thread), the import stops at the next row, leaves
     * the store as it was and answers NIMBARA_CANCELLED. */
    const volatile int* cancel;
    /* Rows whose parent is missing are brought in all the same rather than the file refused. */
    int keep_orphans;
} nimbara_import_options;

typedef struct nimbara_import_counts {
    size_t struct_size;
    int64_t clientes, contratos, guias, linhas, servicos;
} nimbara_import_counts;

/* Imports `path` of version `version` ("0513", "0514", ...); `options` and `counts` may be NULL. */
NIMBARA_C_API nimbara_status nimbara_store_import(nimbara_store* store, const char* path, size_t path_size,
                                                  const char* version, size_t version_size,
                                                  const nimbara_import_options* options, nimbara_import_counts* counts);

#ifdef __cplusplus
}
#endif

#endif /* NIMBARA_H */
