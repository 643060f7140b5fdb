import { ApiError, api } from './api';
import { h } from './dom';
import { TextKey, t } from './i18n';

type Loose = Record<string, unknown>;

// The print and barcode settings with the words a person needs; the key is shown beside each.
const LABELS: Record<string, TextKey> = {
  VCod2DFonteSize: 'setModuleSize', vCod2DRatio: 'setRowHeight', vCod2DNColunas: 'setColumns', vCod2DNLinhas: 'setRows',
  vCod2DErroLevel: 'setErrorLevel', vCod2DPDFMode: 'setMode', vCod2DTruncated: 'setTruncated', VCod2DTruncatedRuncated: 'setTruncated',
  vCod2DApplyTilde: 'setTilde', vGuiaNVias: 'setCopies', vGuiaMargensTopo: 'setTopMargin', vGuiaMargensEsquerda: 'setLeftMargin',
  vCodTerceiro: 'setThirdParty',
};

// The settings as `db params --json` answers them: {"settings": {KEY: {"value", "set"}}}, or plain values.
export function readSettings(value: unknown): Record<string, string> {
  const o = (value ?? {}) as Loose;
  const settings = (o.settings ?? o) as Loose;
  const out: Record<string, string> = {};
  for (const [key, v] of Object.entries(settings)) {
    if (key === 'status') continue;
    out[key] = v && typeof v === 'object' ? String((v as Loose).value ?? '') : String(v ?? '');
  }
  return out;
}

export async function settingsPage(main: HTMLElement): Promise<void> {
  const settings = readSettings(await api.get<unknown>('/settings'));
  const inputs = new Map<string, HTMLInputElement>();
  const message = h('div', { class: 'notice', role: 'status' });
  const error = h('div', { class: 'notice bad', role: 'alert' });
  const preview = h('iframe', { class: 'pdf', title: t('settingsPreview') });
  let previewUrl = '';

  const current = () => Object.fromEntries([...inputs].map(([k, input]) => [k, input.value.trim()]));
  function refuse(e: unknown): void {
    if (!(e instanceof ApiError)) throw e;
    error.textContent = `${e.message}${e.field ? ` (${e.field})` : ''}`;
    const input = e.field ? inputs.get(e.field) : undefined;
    input?.setAttribute('aria-invalid', 'true');
    input?.focus();
  }
  const form = h('form', { class: 'card', 'aria-labelledby': 'settings-title' },
    h('h2', { id: 'settings-title' }, t('settingsPrint')),
    h('div', { class: 'fields' }, Object.entries(settings).map(([key, value]) => {
      const id = `setting-${key}`;
      const input = h('input', { id, name: key, value, 'aria-describedby': `${id}-key` });
      input.addEventListener('input', () => input.removeAttribute('aria-invalid'));
      inputs.set(key, input);
      return h('div', { class: 'field' }, h('label', { for: id }, LABELS[key] ? t(LABELS[key]) : key), input,
        h('div', { class: 'hint', id: `${id}-key` }, h('code', {}, key)));
    })),
    error,
    h('div', { class: 'actions' },
      h('button', { type: 'button', id: 'preview-settings' }, t('previewSettings')),
      h('button', { type: 'submit', class: 'primary' }, t('save'))));
  form.querySelector('#preview-settings')!.addEventListener('click', async () => {
    error.textContent = '';
    try {
      const blob = await api.postForBlob('/settings/preview', { settings: current() });
      if (previewUrl) URL.revokeObjectURL(previewUrl);
      previewUrl = URL.createObjectURL(blob);
      preview.src = previewUrl;
      message.textContent = t('previewReady');
    } catch (e) {
      refuse(e);
    }
  });
  form.addEventListener('submit', async (event) => {
    event.preventDefault();
    error.textContent = '';
    try {
      await api.put('/settings', { settings: current() });
      message.textContent = t('settingsSaved');
    } catch (e) {
      refuse(e);
    }
  });
  main.replaceChildren(h('h1', {}, t('navSettings')), message, form,
    h('section', { class: 'card', 'aria-labelledby': 'preview-title' }, h('h2', { id: 'preview-title' }, t('settingsPreview')),
      h('p', { class: 'muted' }, t('previewIntro')), preview));
}
