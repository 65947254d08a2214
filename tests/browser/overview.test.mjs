// The start page: what an administrator sees after signing in, and where it leads.
import assert from 'node:assert/strict'
import { test } from 'node:test'
import { openNamed, picture, withConsole } from './console.mjs'

let console
let page

const logs = ['iplog', 'predatalog', 'subjectlog', 'bodylog', 'avlog']

withConsole({ sample: true }, started => {
  ;({ console, page } = started)
})

const chart = () => page.locator('.chart')
const plot = () => page.getByRole('slider', { name: 'Mails over time' })
const drawn = () => page.waitForFunction(() => document.querySelector('.chart-plot canvas')?.width > 300 && !document.querySelector('.chart-plot .spinner'))

test('the overview is what opens after signing in', async () => {
  await page.waitForURL(/#\/overview$/)
  assert.equal(await page.getByRole('navigation').getByRole('link').first().textContent(), 'Overview')
  await openNamed(page, 'general')
  await openNamed(page, 'overview')
  await drawn()
  const rejected = console.sql(
    logs
      .map(log => {
        const status = log === 'iplog' || log === 'predatalog' ? 'status=2 and' : ''
        return `select count(*) from ${log} where ${status} servertime>=strftime('%Y-%m-%d %H:','now','localtime','-23 hours')`
      })
      .join(' union all ')
      .replace(/^/, 'select sum(c) from (select 0 as c union all ')
      .concat(')'),
  )
  await chart().getByText(new RegExp(`Rejected\\s*${Number(rejected).toLocaleString('en')}`)).waitFor()
  await page.getByText('has entries without effect').first().waitFor({ state: 'attached' }).catch(() => {})
  await picture(page, 'overview')
})

test('the chart is read and followed by keyboard, and has its numbers as a table', async () => {
  await drawn()
  await plot().focus()
  await page.keyboard.press('End')
  const last = await plot().getAttribute('aria-valuetext')
  assert.match(last, /Rejected \d+, Allowed \d+, Neutral \d+$/)
  await page.keyboard.press('ArrowLeft')
  assert.notEqual(await plot().getAttribute('aria-valuetext'), last)
  const rows = page.locator('.chart table tbody tr')
  assert.equal(await rows.count(), 24)
  await page.getByRole('button', { name: 'As a table' }).click()
  await rows.first().waitFor({ state: 'visible' })
  const height = async () => (await page.locator('.chart').boundingBox()).height
  const asTable = await height()
  await page.getByRole('button', { name: 'As a table' }).click()
  await plot().waitFor()
  assert.equal(await height(), asTable)
  await plot().focus()
  await page.keyboard.press('End')
  await page.keyboard.press('Enter')
  await page.waitForURL(/#\/messages\/since/)
  await page.locator('main [data-control^="c-messages-"]').first().waitFor()
  await page.goBack()
  await page.waitForURL(/#\/overview$/)
})

test('a leader leads to its messages, and the page refreshes itself', async () => {
  await openNamed(page, 'overview')
  const network = page.locator('[data-control="c-overview-clients"] a').first()
  const name = await network.textContent()
  await network.click()
  await page.waitForURL(url => decodeURIComponent(url.hash).endsWith(`ip:${name}`))
  await openNamed(page, 'overview')
  await page.getByRole('combobox', { name: 'Period' }).click()
  await page.getByRole('option', { name: 'week' }).click()
  await page.waitForFunction(() => document.querySelectorAll('.chart table tbody tr').length === 7)
  await drawn()
  await picture(page, 'overview-week')
})

test('what needs an eye names pages by their titles', async () => {
  await openNamed(page, 'overview')
  const link = page.locator('[data-control="c-overview-attention"] .kind-page a').first()
  const target = await link.getAttribute('href')
  const title = await page.getByRole('navigation').locator(`a[href="${target}"]`).textContent()
  assert.equal(await link.textContent(), title)
  assert.notEqual(`#/${title}`, target)
})

test('in German', async () => {
  console.run('do', 'general', 'Combo1=german')
  await openNamed(page, 'general')
  await openNamed(page, 'overview')
  await page.getByText('Mails im Lauf der Zeit').first().waitFor()
  await drawn()
  await picture(page, 'overview-german')
})
