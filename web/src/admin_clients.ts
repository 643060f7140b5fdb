import { ApiError, api, listIn } from './api';
import { confirmDialog, describe } from './confirm';
import { clear, h } from './dom';
import { cascadeOf } from './guia_view';
import { TextKey, t } from './i18n';

type Loose = Record<string, unknown>;

// The client's fields as the client file names them, with the kind of control each needs.
const CLIENT_FIELDS: [string, TextKey, 'text' | 'number' | 'area'][] = [
  ['vCod_Cliente', 'clientCode', 'text'], ['vNome', 'clientName', 'text'], ['vNIF', 'clientTaxNumber', 'text'],
  ['vMorada', 'clientAddress', 'text'], ['vLocalidade', 'clientTown', 'text'], ['vCodPostal', 'clientPostalCode', 'text'],
  ['vDesigPostal', 'clientPostalName', 'text'], ['iTipoCliente', 'clientKind', 'number'], ['iAcessoRede', 'clientAccess', 'number'],
  ['vObservacoes', 'remarks', 'area'],
];
const CONTRACT_FIELDS: [string, TextKey, 'text' | 'check'][] = [
  ['vCodContrato', 'contractCode', 'text'], ['vDesignacao', 'contractName', 'text'], ['vCodCredencial', 'contractCredential', 'text'],
  ['vJppCredenciado', 'contractAccredited', 'check'], ['vValidacao', 'contractValidation', 'text'],
  ['vDescricao', 'contractDescription', 'text'], ['bActivo', 'contractActive', 'check'],
];

function str(v: unknown): string {
  return v === null || v === undefined ? '' : String(v);
}

function errorText(error: unknown): string {
  return error instanceof ApiError ? `${error.message}${error.field ? ` (${error.field})` : ''}` : String(error);
}

// Clients and their contracts: search, create, edit, and delete with what goes with them named.
export async function clientsPage(main: HTMLElement): Promise<void> {
  const search = h('input', { id: 'client-search', type: 'search', name: 'search' });
  const list = h('div', { 'aria-live': 'polite' });
  const editor = h('div');
  const message = h('div', { class: 'notice', role: 'status' });
  const searchForm = h('form', { class: 'toolbar', role: 'search' },
    h('div', { class: 'field' }, h('label', { for: 'client-search' }, t('searchClients')), search),
    h('button', { type: 'submit' }, t('search')));
  const create = h('button', { type: 'button', class: 'primary' }, t('newClient'));
  create.addEventListener('click', () => edit(null));

  async function showList(): Promise<void> {
    const clients = listIn(await api.get<unknown>('/clients', { search: search.value.trim() }), 'clients');
    clear(list);
    if (!clients.length) {
      list.append(h('p', { class: 'muted' }, t('noClients')));
      return;
    }
    list.append(h('table', {}, h('caption', { class: 'skip' }, t('navClients')),
      h('thead', {}, h('tr', {}, h('th', { scope: 'col' }, t('clientCode')), h('th', { scope: 'col' }, t('clientName')), h('th', { scope: 'col' }, t('actions')))),
      h('tbody', {}, clients.map((c) => {
        const code = str(c.vCod_Cliente ?? c.Cod_Cliente ?? c.code);
        const open = h('button', { type: 'button' }, t('edit'));
        open.addEventListener('click', async () => edit(await api.get<Loose>(`/clients/${encodeURIComponent(code)}`)));
        const remove = h('button', { type: 'button', class: 'danger' }, t('delete'));
        remove.addEventListener('click', () => void removeClient(code));
        return h('tr', {}, h('td', {}, code), h('td', {}, str(c.vNome ?? c.Nome ?? c.name)), h('td', {}, h('div', { class: 'actions' }, open, remove)));
      }))));
  }

  async function removeClient(code: string): Promise<void> {
    const cascade = await api.del<unknown>(`/clients/${encodeURIComponent(code)}`, { dry_run: 1 });
    if (!(await confirmDialog(t('deleteClientTitle', { code }), [h('p', {}, t('deleteTakes')), describe(cascadeOf(cascade))], t('deleteConfirm')))) return;
    try {
      await api.del(`/clients/${encodeURIComponent(code)}`);
      message.textContent = t('clientDeleted', { code });
      clear(editor);
      await showList();
    } catch (error) {
      message.textContent = errorText(error);
    }
  }

  function edit(client: Loose | null): void {
    clear(editor);
    const isNew = client === null;
    const inputs = new Map<string, HTMLInputElement | HTMLTextAreaElement>();
    const error = h('div', { class: 'notice bad', role: 'alert' });
    const form = h('form', { class: 'card', 'aria-labelledby': 'client-form-title' },
      h('h2', { id: 'client-form-title' }, isNew ? t('newClient') : t('editClient', { code: str(client.vCod_Cliente) })),
      h('div', { class: 'fields' }, CLIENT_FIELDS.map(([key, label, kind]) => {
        const id = `client-${key}`;
        const control = kind === 'area' ? h('textarea', { id, name: key }) : h('input', { id, name: key, inputmode: kind === 'number' ? 'numeric' : null });
        control.value = str(client?.[key] ?? (kind === 'number' ? '0' : ''));
        if (key === 'vCod_Cliente' && !isNew) control.setAttribute('readonly', '');
        inputs.set(key, control);
        return h('div', { class: kind === 'area' ? 'field wide' : 'field' }, h('label', { for: id }, t(label)), control);
      })),
      error,
      h('div', { class: 'actions' }, h('button', { type: 'submit', class: 'primary' }, t('save'))));
    form.addEventListener('submit', async (event) => {
      event.preventDefault();
      const body: Loose = {};
      for (const [key, , kind] of CLIENT_FIELDS) {
        const value = inputs.get(key)!.value.trim();
        body[key] = kind === 'number' && /^-?\d+$/.test(value) ? Number(value) : value;
      }
      try {
        const code = String(body.vCod_Cliente);
        if (isNew) await api.post('/clients', { ...body, contratos: [] });
        else await api.put(`/clients/${encodeURIComponent(code)}`, { ...body, contratos: client.contratos ?? [] });
        message.textContent = t('clientSaved', { code });
        await showList();
        edit(await api.get<Loose>(`/clients/${encodeURIComponent(code)}`));
      } catch (e) {
        error.textContent = errorText(e);
        if (e instanceof ApiError && e.field && inputs.has(e.field)) {
          inputs.get(e.field)!.setAttribute('aria-invalid', 'true');
          inputs.get(e.field)!.focus();
        }
      }
    });
    editor.append(form);
    if (!isNew) editor.append(contractsCard(client));
    (inputs.get(isNew ? 'vCod_Cliente' : 'vNome') as HTMLElement).focus();
  }

  function contractsCard(client: Loose): HTMLElement {
    const code = str(client.vCod_Cliente);
    const contracts = (client.contratos ?? []) as Loose[];
    const card = h('section', { class: 'card', 'aria-labelledby': 'contracts-title' }, h('h2', { id: 'contracts-title' }, t('contracts')));
    const rows = contracts.map((c) => contractForm(code, c));
    card.append(...rows, contractForm(code, null));
    return card;
  }

  function contractForm(clientCode: string, contract: Loose | null): HTMLElement {
    const key = contract ? str(contract.id ?? contract.Id_Contrato ?? contract.vCodContrato) : 'new';
    const inputs = new Map<string, HTMLInputElement>();
    const error = h('div', { class: 'notice bad', role: 'alert' });
    const remove = h('button', { type: 'button', class: 'danger' }, t('delete'));
    const form = h('form', { class: 'fields', 'aria-label': contract ? t('contractN', { code: str(contract.vCodContrato) }) : t('newContract') },
      CONTRACT_FIELDS.map(([field, label, kind]) => {
        const id = `contract-${key}-${field}`;
        const input = h('input', { id, name: field, type: kind === 'check' ? 'checkbox' : 'text' });
        if (kind === 'check') input.checked = contract ? contract[field] === true || contract[field] === 1 || contract[field] === '1' : field === 'bActivo';
        else input.value = str(contract?.[field]);
        inputs.set(field, input);
        return h('div', { class: 'field' }, h('label', { for: id }, t(label)), input);
      }),
      h('div', { class: 'actions wide' }, h('button', { type: 'submit' }, contract ? t('save') : t('addContract')), contract ? remove : null),
      h('div', { class: 'wide' }, error));
    form.addEventListener('submit', async (event) => {
      event.preventDefault();
      const body: Loose = {};
      for (const [field, , kind] of CONTRACT_FIELDS) body[field] = kind === 'check' ? inputs.get(field)!.checked : inputs.get(field)!.value.trim();
      try {
        if (contract) await api.put(`/contracts/${encodeURIComponent(key)}`, body);
        else await api.post(`/clients/${encodeURIComponent(clientCode)}/contracts`, body);
        message.textContent = t('contractSaved', { code: String(body.vCodContrato) });
        edit(await api.get<Loose>(`/clients/${encodeURIComponent(clientCode)}`));
      } catch (e) {
        error.textContent = errorText(e);
      }
    });
    remove.addEventListener('click', async () => {
      const cascade = await api.del<unknown>(`/contracts/${encodeURIComponent(key)}`, { dry_run: 1 });
      if (!(await confirmDialog(t('deleteContractTitle', { code: str(contract?.vCodContrato) }), [h('p', {}, t('deleteTakes')), describe(cascadeOf(cascade))], t('deleteConfirm')))) return;
      try {
        await api.del(`/contracts/${encodeURIComponent(key)}`);
        edit(await api.get<Loose>(`/clients/${encodeURIComponent(clientCode)}`));
      } catch (e) {
        error.textContent = errorText(e);
      }
    });
    return h('div', { class: 'contract' }, form);
  }

  searchForm.addEventListener('submit', (event) => {
    event.preventDefault();
    void showList();
  });
  main.replaceChildren(h('h1', {}, t('navClients')), message,
    h('section', { class: 'card' }, searchForm, h('div', { class: 'actions' }, create), list), editor);
  await showList();
}
