/* A host in C of the installed component: judges one product line, then validates a Guia file,
 * lists each failing line with the values that would have been accepted, and prints the Guia to
 * memory when it passed, writing the first copy's PDF where asked.
 *
 *   nimbara_c_host GUIA.json [OUT.pdf]
 *
 * Exit status: 0 the Guia passed (and printed), 1 it did not pass, 2 a failure, named on stderr. */
#include <stdio.h>
#include <string.h>

#include <nimbara/nimbara.h>

static int fail(const char* what)
{
    fprintf(stderr, "nimbara_c_host: %s: %s\n", what, nimbara_last_error());
    return 2;
}

static void print_errors(const nimbara_outcome* outcome)
{
    size_t i, j;
    for (i = 0; i < nimbara_outcome_error_count(outcome); ++i) {
        nimbara_error_info info;
        memset(&info, 0, sizeof info);
        info.struct_size = sizeof info;
        if (nimbara_outcome_error(outcome, i, &info) != NIMBARA_OK) continue;
        if (info.row < 0)
            printf("Guia: error %d: %.*s\n", (int)info.number, (int)info.description_size, info.description);
        else
            printf("line %.*s: error %d: %.*s\n", (int)info.line_size, info.line, (int)info.number,
                   (int)info.description_size, info.description);
        for (j = 0; j < info.possible_count; ++j) {
            const char *code, *label;
            size_t code_size, label_size;
            if (nimbara_outcome_possible(outcome, i, j, &code, &code_size, &label, &label_size) == NIMBARA_OK)
                printf("  %s %.*s %.*s\n", info.ranges ? "range" : "accepted", (int)code_size, code, (int)label_size,
                       label);
        }
    }
}

static int check_one_line(const nimbara_validator* validator)
{
    nimbara_line line;
    int32_t number = 0;
    memset(&line, 0, sizeof line);
    line.struct_size = sizeof line;
    line.produto = "C01", line.produto_size = 3;
    line.zona = "01", line.zona_size = 2;
    line.peso = 50;
    line.velocidade = "0", line.velocidade_size = 1;
    line.formato = "02", line.formato_size = 2;
    line.pre_tratamento = "1", line.pre_tratamento_size = 1;
    line.desconto = "0", line.desconto_size = 1;
    line.ambito = "0", line.ambito_size = 1;
    if (nimbara_check_line(validator, &line, &number, NULL, NULL) == NIMBARA_INTERNAL) return fail("check a line");
    printf("nimbara %s (C interface %d): line C01 01 50 answers %d\n", nimbara_version(), nimbara_abi_version(),
           (int)number);
    return 0;
}

static int print_guia(const nimbara_validator* validator, const char* out)
{
    nimbara_print_job* job = NULL;
    const char* pdf;
    size_t size;
    if (nimbara_validator_print_memory(validator, &job) != NIMBARA_OK) return fail("print");
    if (nimbara_print_job_item(job, 0, &pdf, &size) == NIMBARA_OK) {
        printf("printed %lu copies, the first %lu bytes of PDF\n", (unsigned long)nimbara_print_job_count(job),
               (unsigned long)size);
        if (out != NULL) {
            FILE* file = fopen(out, "wb");
            if (file == NULL || fwrite(pdf, 1, size, file) != size) {
                fprintf(stderr, "nimbara_c_host: cannot write %s\n", out);
                if (file != NULL) fclose(file);
                nimbara_print_job_destroy(job);
                return 2;
            }
            fclose(file);
        }
    }
    nimbara_print_job_destroy(job);
    return 0;
}

int main(int argc, char** argv)
{
    nimbara_validator* validator = NULL;
    nimbara_guia* guia = NULL;
    nimbara_outcome* outcome = NULL;
    nimbara_status status;
    int exit_status;

    if (argc < 2 || argc > 3) {
        fprintf(stderr, "usage: nimbara_c_host GUIA.json [OUT.pdf]\n");
        return 2;
    }
    if (nimbara_validator_create(&validator) != NIMBARA_OK) return fail("create");
    if (check_one_line(validator) != 0) {
        nimbara_validator_destroy(validator);
        return 2;
    }
    if (nimbara_guia_from_file(argv[1], strlen(argv[1]), &guia) != NIMBARA_OK ||
        nimbara_validator_fill(validator, guia) != NIMBARA_OK) {
        exit_status = fail(argv[1]);
    } else if ((status = nimbara_validator_validate(validator, &outcome)) == NIMBARA_OK) {
        printf("%s passed\n", argv[1]);
        exit_status = print_guia(validator, argc == 3 ? argv[2] : NULL);
    } else if (status == NIMBARA_FAILED_VALIDATION) {
        print_errors(outcome);
        exit_status = 1;
    } else {
        exit_status = fail("validate");
    }
    nimbara_outcome_destroy(outcome);
    nimbara_guia_destroy(guia);
    nimbara_validator_destroy(validator);
    return exit_status;
}
